#pragma once

#include <QtWidgets/QStyledItemDelegate>

namespace tremor {

// Shows the ticks of a column. A cell holds "q" (an empty box) or U+00FE (a ticked one), the places
// of the boxes in the font Wingdings; a box is painted for them, whatever fonts there are.
class TickDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static QString mark(bool ticked); // the text of a cell

    QString displayText(const QVariant& value, const QLocale& locale) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace tremor
