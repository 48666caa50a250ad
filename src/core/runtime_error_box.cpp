#include "core/runtime_error_box.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>

namespace tremor {
namespace {

// Room for the head of the report and some ten lines of the call stack.
constexpr int reportColumns = 76;
constexpr int reportLines = 18;

QLabel* criticalIcon(QWidget& parent) {
    auto* label = new QLabel(&parent);
    const QStyle& style = *parent.style();
    const int size = style.pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &parent);
    label->setObjectName(QStringLiteral("icon"));
    label->setPixmap(style.standardIcon(QStyle::SP_MessageBoxCritical, nullptr, &parent)
                         .pixmap(QSize(size, size), parent.devicePixelRatioF()));
    return label;
}

QPlainTextEdit* reportView(const QString& report) {
    auto* view = new QPlainTextEdit;
    view->setObjectName(QStringLiteral("report"));
    view->setAccessibleName(RuntimeErrorBox::tr("Error report"));
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setTabChangesFocus(true);
    view->setPlainText(report);
    return view;
}

} // namespace

RuntimeErrorBox::RuntimeErrorBox(const QString& title, const QString& report, int unattendedSeconds,
                                 QWidget* parent, std::chrono::milliseconds second)
    : QDialog(parent),
      unattendedSeconds_(unattendedSeconds),
      remainingSeconds_(unattendedSeconds),
      countdownLabel_(new QLabel(this)) {
    setObjectName(QStringLiteral("runtimeErrorBox"));
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    layOut(report);
    countdownTimer_.setInterval(second);
    connect(&countdownTimer_, &QTimer::timeout, this, &RuntimeErrorBox::countDown);
    showCountdown();
}

ErrorAnswer RuntimeErrorBox::ask() {
    switch (exec()) {
    case static_cast<int>(ErrorAnswer::Abort):
        return ErrorAnswer::Abort;
    case static_cast<int>(ErrorAnswer::Retry):
        return ErrorAnswer::Retry;
    default:
        return ErrorAnswer::Ignore;
    }
}

void RuntimeErrorBox::layOut(const QString& report) {
    auto* view = reportView(report);
    auto* body = new QHBoxLayout;
    body->setSpacing(12);
    body->addWidget(criticalIcon(*this), 0, Qt::AlignTop);
    body->addWidget(view, 1);

    countdownLabel_->setObjectName(QStringLiteral("countdown"));
    countdownLabel_->setTextFormat(Qt::PlainText);
    auto* abortButton = addButton(tr("&Abort"), QStringLiteral("cmdAbort"), ErrorAnswer::Abort);
    auto* retryButton = addButton(tr("&Retry"), QStringLiteral("cmdRetry"), ErrorAnswer::Retry);
    auto* ignoreButton = addButton(tr("&Ignore"), QStringLiteral("cmdIgnore"), ErrorAnswer::Ignore);
    abortButton->setToolTip(tr("End the program at once, without saving the settings"));
    retryButton->setToolTip(tr("Try the failed step again"));
    ignoreButton->setToolTip(tr("Go on with the next step"));
    // Enter presses a focused Retry, and Ignore from everywhere else.
    retryButton->setAutoDefault(true);
    ignoreButton->setDefault(true);
    ignoreButton->setFocus();

    auto* foot = new QHBoxLayout;
    foot->addWidget(countdownLabel_, 1);
    foot->addWidget(abortButton);
    foot->addWidget(retryButton);
    foot->addWidget(ignoreButton);

    auto* all = new QVBoxLayout(this);
    all->setSpacing(12);
    all->addLayout(body, 1);
    all->addLayout(foot);
    setSizeGripEnabled(true);

    const QFontMetrics metrics = view->fontMetrics();
    view->setMinimumHeight(metrics.lineSpacing() * 6);
    resize(metrics.horizontalAdvance(u'x') * reportColumns,
           metrics.lineSpacing() * reportLines + foot->sizeHint().height());
}

QPushButton* RuntimeErrorBox::addButton(const QString& text, const QString& name,
                                        ErrorAnswer answer) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, answer] { done(static_cast<int>(answer)); });
    return button;
}

void RuntimeErrorBox::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // The native window sees every key and every move over the dialog, whatever child they are
    // for and whether or not that child tracks the pointer.
    if (windowHandle() != nullptr)
        windowHandle()->installEventFilter(this);
    if (unattendedSeconds_ > 0)
        countdownTimer_.start();
}

bool RuntimeErrorBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == windowHandle() && isActivity(*event))
        restartCountdown();
    return QDialog::eventFilter(watched, event);
}

bool RuntimeErrorBox::isActivity(const QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
        return true;
    case QEvent::MouseMove: {
        // A window that appears below a resting pointer gets moves, too: they are nobody's.
        const QPoint pointer = static_cast<const QMouseEvent&>(event).globalPosition().toPoint();
        const bool moved = pointer != lastPointer_;
        lastPointer_ = pointer;
        return moved;
    }
    default:
        return false;
    }
}

void RuntimeErrorBox::countDown() {
    --remainingSeconds_;
    if (remainingSeconds_ <= 0)
        reject();
    else
        showCountdown();
}

void RuntimeErrorBox::restartCountdown() {
    if (unattendedSeconds_ <= 0)
        return;
    remainingSeconds_ = unattendedSeconds_;
    countdownTimer_.start();
    showCountdown();
}

void RuntimeErrorBox::showCountdown() {
    countdownLabel_->setVisible(unattendedSeconds_ > 0);
    countdownLabel_->setText(tr("Ignore in %1 s").arg(remainingSeconds_));
}

} // namespace tremor
