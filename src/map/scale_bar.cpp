#include "map/scale_bar.h"

#include <QtGui/QPainter>

namespace tremor {
namespace {

// Pixels that do not depend on the screen's density, as those of a map page do not.
constexpr qreal barLength = 40;
constexpr qreal tickHeight = 6;

} // namespace

void ScaleBar::setLabel(const QString& label) {
    if (label == label_)
        return;
    label_ = label;
    setAccessibleDescription(label_.trimmed());
    update();
}

void ScaleBar::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (label_.isEmpty())
        return;
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
    const QRectF area = contentsRect();
    const qreal right = area.right() - 1;
    const qreal left = right - barLength;
    const qreal bottom = area.bottom() - 2;
    const qreal top = bottom - tickHeight;
    painter.drawLine(QPointF(left, bottom), QPointF(right, bottom));
    painter.drawLine(QPointF(left, bottom), QPointF(left, top));
    painter.drawLine(QPointF(right, bottom), QPointF(right, top));
    // Above the bar: "1250km" is wider than what stands free beside it.
    painter.drawText(QRectF(area.left(), area.top(), right - area.left(), top - area.top()),
                     Qt::AlignRight | Qt::AlignBottom, label_.trimmed());
}

} // namespace tremor
