#include "core/tick_delegate.h"

namespace tremor {
namespace {

constexpr QChar emptyBox = u'q';
constexpr QChar tickedBox = u'\u00FE';

} // namespace

QString TickDelegate::mark(bool ticked) {
    return ticked ? tickedBox : emptyBox;
}

QString TickDelegate::displayText(const QVariant& value, const QLocale&) const {
    return value.toString() == tickedBox ? QStringLiteral("\u2611") : QStringLiteral("\u2610");
}

void TickDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->displayAlignment = Qt::AlignCenter;
    option->font.setPointSizeF(option->font.pointSizeF() * 1.3);
}

} // namespace tremor
