#include "map/scale_bar.h"

#include <QtGui/QPainter>

namespace tremor {
namespace {

// Pixels that do not depend on the screen's density, as those of a map page do not.
constexpr qreal barLength = 40;
constexpr qreal tickHeight = 6;
constexpr qreal gap = 4;

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
    const qreal bottom = area.center().y() + tickHeight / 2;
    painter.drawLine(QPointF(left, bottom), QPointF(right, bottom));
    painter.drawLine(QPointF(left, bottom), QPointF(left, bottom - tickHeight));
    painter.drawLine(QPointF(right, bottom), QPointF(right, bottom - tickHeight));
    painter.drawText(QRectF(area.left(), area.top(), left - gap - area.left(), area.height()),
                     Qt::AlignRight | Qt::AlignVCenter, label_.trimmed());
}

} // namespace tremor
