#include "drawings.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <vector>

namespace tremor::assets {
namespace {

constexpr double side = 512; // of the drawing; sizes below are in its units

struct Shape {
    QPainterPath path;
    QColor colour;
    double stroke = 0; // width of the line; 0: filled
};

// The epicentre with its waves above the trace that a station writes.
std::vector<Shape> shapes() {
    std::vector<Shape> all;
    QPainterPath tile;
    tile.addRoundedRect(QRectF(16, 16, side - 32, side - 32), 104, 104);
    all.push_back({tile, QColor(27, 45, 60)});

    const QPointF epicentre(256, 206);
    const auto ring = [&](double radius, const QColor& colour) {
        QPainterPath circle;
        circle.addEllipse(epicentre, radius, radius);
        all.push_back({circle, colour, 20});
    };
    ring(150, QColor(255, 196, 61, 90));
    ring(100, QColor(255, 166, 43, 190));
    QPainterPath dot;
    dot.addEllipse(epicentre, 50, 50);
    all.push_back({dot, QColor(255, 77, 46)});

    constexpr double level = 420;
    QPainterPath trace(QPointF(76, level));
    for (int x = 80; x <= 436; x += 4) {
        const double since = x - 140;
        const double swing =
            since < 0 ? 0 : 84 * std::exp(-since / 90) * std::sin(since * 2 * M_PI / 72);
        trace.lineTo(x, level - swing);
    }
    all.push_back({trace, QColor(240, 246, 250), 20});
    return all;
}

QImage icon(int size) {
    constexpr int fine = 4; // drawn larger and shrunk, which is smoother on small icons
    QImage image(size * fine, size * fine, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size * fine / side, size * fine / side);
    for (const Shape& shape : shapes()) {
        if (shape.stroke > 0)
            painter.strokePath(shape.path, QPen(shape.colour, shape.stroke, Qt::SolidLine,
                                                Qt::RoundCap, Qt::RoundJoin));
        else
            painter.fillPath(shape.path, shape.colour);
    }
    painter.end();
    return image.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

QString pathData(const QPainterPath& path) {
    QString data;
    const auto add = [&](QLatin1String command, int i) {
        const QPainterPath::Element& element = path.elementAt(i);
        data += command + QString::number(std::round(element.x * 100) / 100) + QLatin1Char(' ') +
                QString::number(std::round(element.y * 100) / 100);
    };
    for (int i = 0; i < path.elementCount(); ++i) {
        switch (path.elementAt(i).type) {
        case QPainterPath::MoveToElement:
            add(QLatin1String("M"), i);
            break;
        case QPainterPath::LineToElement:
            add(QLatin1String("L"), i);
            break;
        case QPainterPath::CurveToElement:
            add(QLatin1String("C"), i);
            break;
        case QPainterPath::CurveToDataElement:
            add(QLatin1String(" "), i);
            break;
        }
    }
    return data;
}

QByteArray svg() {
    QString text = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" "
                                  "height=\"%1\" viewBox=\"0 0 %1 %1\">\n")
                       .arg(side);
    for (const Shape& shape : shapes()) {
        const QString paint =
            QStringLiteral("%1=\"%2\" %1-opacity=\"%3\"")
                .arg(shape.stroke > 0 ? QStringLiteral("stroke") : QStringLiteral("fill"),
                     shape.colour.name())
                .arg(std::round(shape.colour.alphaF() * 100) / 100);
        const QString line =
            shape.stroke > 0
                ? QStringLiteral(" fill=\"none\" stroke-width=\"%1\" stroke-linecap=\"round\" "
                                 "stroke-linejoin=\"round\"")
                      .arg(shape.stroke)
                : QString();
        text += QStringLiteral("<path %1%2 d=\"%3\"/>\n").arg(paint, line, pathData(shape.path));
    }
    return (text + QStringLiteral("</svg>\n")).toUtf8();
}

} // namespace

bool writeIcons(const QDir& folder) {
    const auto place = [&](const QString& size, const QString& suffix) {
        const QString apps = size + QStringLiteral("/apps");
        return folder.mkpath(apps)
                   ? folder.filePath(apps + QStringLiteral("/tremorledger.") + suffix)
                   : QString();
    };
    for (const int size : iconSizes) {
        if (!icon(size).save(place(QStringLiteral("%1x%1").arg(size), QStringLiteral("png"))))
            return false;
    }
    QFile file(place(QStringLiteral("scalable"), QStringLiteral("svg")));
    const QByteArray text = svg();
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush();
}

} // namespace tremor::assets
