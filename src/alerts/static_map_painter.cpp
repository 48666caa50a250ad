#include "alerts/static_map_painter.h"

#include "alerts/world_outlines.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tremor {

namespace {

// The colours of the embedded maps engine (src/map/engine/src/base_map.js).
constexpr QColor seaColour(0xD3, 0xE2, 0xEC);
constexpr QColor landColour(0xF6, 0xF2, 0xE9);
constexpr QColor coastColour(0x7D, 0x97, 0xA8);
constexpr QColor borderColour(0xBF, 0xAE, 0x9C);
constexpr QColor textColour(0x33, 0x3F, 0x48);
constexpr QColor markerColour(0xD9, 0x1E, 0x18);

constexpr int tileSize = 256;
constexpr int longestSide = 4096; // pixels
constexpr int highestZoom = 20;
constexpr double earthRadiusKm = 6378.137; // of the Web-Mercator sphere
constexpr double margin = 6;               // pixels drawn beyond the edge, so that strokes go on
constexpr int inset = 6;                   // pixels between the edge and what is written

// The packed outlines; read anew for each picture, as pictures are rare and the data large.
QByteArray packedOutlines() {
    QFile file(QStringLiteral(":/alerts/world_outlines.bin"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// From the world of width 1 to the picture's pixels.
struct View {
    double scale; // pixels a world
    double left;
    double top;

    QPointF pixel(const MercatorPoint& point) const {
        return {point.x * scale - left, point.y * scale - top};
    }
};

QPainterPath pathOf(const View& view, const std::vector<MercatorLine>& lines, bool closed) {
    QPainterPath path; // even-odd, as the rings ask for
    for (const MercatorLine& line : lines) {
        if (line.empty())
            continue;
        path.moveTo(view.pixel(line.front()));
        for (const MercatorPoint& point : line)
            path.lineTo(view.pixel(point));
        if (closed)
            path.closeSubpath();
    }
    return path;
}

// A pin whose tip marks the place.
void paintMarker(QPainter& painter, QPointF tip) {
    QPainterPath pin(tip);
    pin.cubicTo(tip + QPointF(-2, -9), tip + QPointF(-8, -12), tip + QPointF(-8, -19));
    pin.arcTo(QRectF(tip + QPointF(-8, -27), QSizeF(16, 16)), 180, -180);
    pin.cubicTo(tip + QPointF(8, -12), tip + QPointF(2, -9), tip);
    painter.setPen(QPen(Qt::white, 1.2));
    painter.setBrush(markerColour);
    painter.drawPath(pin);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(tip + QPointF(0, -19), 3, 3);
    painter.setBrush(Qt::NoBrush);
}

// Text readable on land and sea.
void paintText(QPainter& painter, QPointF baseline, const QString& text) {
    QPainterPath letters;
    letters.addText(baseline, painter.font(), text);
    painter.strokePath(
        letters, QPen(QColor(255, 255, 255, 220), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(letters, textColour);
}

// The longest of 1, 2, 5, 10, 20, 50 ... that fits, in kilometres.
double roundLength(double longestKm) {
    const double power = std::pow(10, std::floor(std::log10(longestKm)));
    for (const int factor : {5, 2}) {
        if (factor * power <= longestKm)
            return factor * power;
    }
    return power;
}

QString lengthText(double km) {
    return km < 1 ? QStringLiteral("%1 m").arg(std::lround(km * 1000))
                  : QStringLiteral("%1 km").arg(std::lround(km));
}

// In the bottom left corner, true for the latitude of the middle.
void paintScaleBar(QPainter& painter, const QSize& size, double kmPerPixel) {
    const double km = roundLength(size.width() * 0.35 * kmPerPixel);
    const double length = km / kmPerPixel;
    const double y = size.height() - inset - 1;
    QPainterPath bar(QPointF(inset, y - 5));
    bar.lineTo(inset, y);
    bar.lineTo(inset + length, y);
    bar.lineTo(inset + length, y - 5);
    painter.strokePath(bar, QPen(QColor(255, 255, 255, 220), 4));
    painter.strokePath(bar, QPen(textColour, 1.5));
    paintText(painter, QPointF(inset + 4, y - 5), lengthText(km));
}

void paintAttribution(QPainter& painter, const QSize& size) {
    const QString text = QStringLiteral("Natural Earth");
    const double width = painter.fontMetrics().horizontalAdvance(text);
    paintText(painter, QPointF(size.width() - inset - width, size.height() - inset), text);
}

void paintWorld(QPainter& painter, const View& view, const WorldOutlines& outlines) {
    painter.fillPath(pathOf(view, outlines.land, true), landColour);
    painter.strokePath(pathOf(view, outlines.borders, false), QPen(borderColour, 1.2));
    painter.strokePath(pathOf(view, outlines.coasts, false), QPen(coastColour, 1));
}

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes.toStdString() : std::string();
}

} // namespace

std::string StaticMapPainter::drawStaticMap(const StaticMapRequest& request) {
    const QSize size(std::clamp(request.width, 1, longestSide),
                     std::clamp(request.height, 1, longestSide));
    const double scale = tileSize * std::exp2(std::clamp(request.zoom, 0, highestZoom));
    const MercatorPoint centre =
        mercatorPoint(request.latitude, std::remainder(request.longitude, 360));
    const View view = {scale, centre.x * scale - size.width() / 2.0,
                       centre.y * scale - size.height() / 2.0};
    const QByteArray packed = packedOutlines();
    const WorldOutlines outlines = outlinesWithin(
        {packed.constData(), static_cast<std::size_t>(packed.size())},
        {(view.left - margin) / scale, (view.top - margin) / scale,
         (view.left + size.width() + margin) / scale, (view.top + size.height() + margin) / scale});

    QImage image(size, QImage::Format_RGB32);
    image.fill(seaColour);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    paintWorld(painter, view, outlines);
    const double worldKm = 2 * std::numbers::pi * earthRadiusKm *
                           std::cos(mercatorLatitude(centre.y) * std::numbers::pi / 180);
    paintScaleBar(painter, size, worldKm / scale);
    paintAttribution(painter, size);
    paintMarker(painter, view.pixel(centre));
    painter.end();
    return pngOf(image);
}

} // namespace tremor
