#include "core/log_list.h"

#include "core/qt_text.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QTextDocument>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStyledItemDelegate>

#include <algorithm>

namespace tremor {
namespace {

// Draws an entry on one row. All rows have one size, which the view asks for once in a layout:
// it is as wide as the widest entry, so that every entry can be read by scrolling.
class OneRowDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale&) const override {
        return value.toString().replace(u'\n', QStringLiteral(" \u21B5 "));
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        const int margins = size.width() - option.fontMetrics.horizontalAdvance(
                                               textOf(*index.model(), index.row()));
        for (int row = 0; row < index.model()->rowCount(); ++row) {
            const QString text = textOf(*index.model(), row);
            size.setWidth(
                std::max(size.width(), option.fontMetrics.horizontalAdvance(text) + margins));
        }
        return size;
    }

  private:
    QString textOf(const QAbstractItemModel& model, int row) const {
        return displayText(model.index(row, 0).data(), {});
    }
};

} // namespace

LogListView::LogListView(QWidget* parent) : QListWidget(parent) {
    setObjectName(QStringLiteral("lst_prog_log"));
    setAccessibleName(tr("Activity log"));
    setSelectionMode(ExtendedSelection);
    setHorizontalScrollMode(ScrollPerPixel);
    setUniformItemSizes(true);
    setItemDelegate(new OneRowDelegate(this));
}

void LogListView::append(std::string_view line) {
    auto* item = new QListWidgetItem(fromBytesWithLines(line), this);
    if (item->text().contains(u'\n'))
        item->setToolTip(Qt::convertFromPlainText(item->text(), Qt::WhiteSpaceNormal));
}

void LogListView::clear() {
    QListWidget::clear();
}

void LogListView::selectLast() {
    if (count() == 0)
        return;
    setCurrentRow(count() - 1, QItemSelectionModel::ClearAndSelect);
    scrollToBottom();
}

void LogListView::refresh() {
    viewport()->repaint();
}

void LogListView::copySelection() {
    QStringList lines;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->isSelected())
            lines += item(row)->text();
    }
    if (!lines.isEmpty())
        QApplication::clipboard()->setText(lines.join(u'\n'));
}

void LogListView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QListWidget::keyPressEvent(event);
}

// A menu that does not block: the log goes on growing behind it.
void LogListView::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("logMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* copy = menu->addAction(tr("Copy"), this, &LogListView::copySelection);
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(!selectedItems().isEmpty());
    auto* selectEverything = menu->addAction(tr("Select all"), this, &QListWidget::selectAll);
    selectEverything->setShortcut(QKeySequence::SelectAll);
    selectEverything->setEnabled(count() > 0);
    menu->popup(event->globalPos());
}

} // namespace tremor
