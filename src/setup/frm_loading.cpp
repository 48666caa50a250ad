#include "setup/frm_loading.h"

#include "core/qt_text.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QVBoxLayout>

namespace tremor {

FrmLoading::FrmLoading(QWidget* owner)
    : QWidget(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
    setObjectName(QStringLiteral("frmLoading"));
    setWindowTitle(tr("Loading"));
    text_ = new QLabel(this);
    text_->setObjectName(QStringLiteral("lblLoading"));
    text_->setTextFormat(Qt::PlainText);
    bar_ = new QProgressBar(this);
    bar_->setObjectName(QStringLiteral("prgLoading"));
    bar_->setRange(0, 100);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->addWidget(text_);
    layout->addWidget(bar_);
    setFixedSize(320, sizeHint().height());
}

void FrmLoading::updateProgress(int percent, std::string_view text) {
    text_->setText(fromBytes(text));
    bar_->setValue(percent);
    show();
    repaint();
}

void FrmLoading::closeEvent(QCloseEvent* event) {
    if (event->spontaneous())
        event->ignore();
    else
        QWidget::closeEvent(event);
}

} // namespace tremor
