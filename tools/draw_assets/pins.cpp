#include "drawings.h"

#include <QPainter>
#include <QPainterPath>

namespace tremor::assets {

QImage pin(const QColor& colour, int size) {
    constexpr int fine = 4; // drawn larger and shrunk, which is smoother on small pins
    QImage image(size * fine, size * fine, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = size * fine;
    const double edge = fine; // one pixel of the result
    const double radius = side * 0.34 - edge / 2;
    const QPointF middle(side / 2, radius + edge);
    const QPointF tip(side / 2, side - edge / 2);
    QPainterPath drop(tip);
    drop.cubicTo(QPointF(middle.x() - radius * 0.35, side * 0.82),
                 QPointF(middle.x() - radius, side * 0.66),
                 QPointF(middle.x() - radius, middle.y()));
    drop.arcTo(QRectF(middle.x() - radius, middle.y() - radius, 2 * radius, 2 * radius), 180, -180);
    drop.cubicTo(QPointF(middle.x() + radius, side * 0.66),
                 QPointF(middle.x() + radius * 0.35, side * 0.82), tip);
    painter.setPen(QPen(QColor(30, 30, 30), edge, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(colour);
    painter.drawPath(drop);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 220));
    painter.drawEllipse(middle, radius * 0.38, radius * 0.38);
    painter.end();
    return image.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

} // namespace tremor::assets
