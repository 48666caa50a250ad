#include "drawings.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QPainterPath>

#include <zip.h>

#include <cmath>

namespace tremor::assets {
namespace {

const QColor ink(34, 49, 60);

QImage panel(int width, int height) {
    QImage image(width * overlayScale, height * overlayScale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(overlayScale, overlayScale);
    painter.setPen(QPen(QColor(154, 168, 178), 1));
    painter.setBrush(QColor(255, 255, 255, 225));
    painter.drawRoundedRect(QRectF(0.5, 0.5, width - 1, height - 1), 4, 4);
    return image;
}

QFont textFont(int pixels, bool bold = false) {
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

void drawEvent(QPainter& painter, QPointF middle, double radius, const QColor& colour) {
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(colour);
    painter.drawEllipse(middle, radius, radius);
    painter.setPen(ink);
}

bool addToZip(zip_t* archive, const QByteArray& name, const QByteArray& bytes) {
    zip_source_t* source =
        zip_source_buffer(archive, bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0);
    if (!source)
        return false;
    const zip_int64_t index =
        zip_file_add(archive, name.constData(), source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    // A fixed time, so that the same drawing gives the same file.
    return zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), 1577880000, 0) == 0;
}

} // namespace

QImage logo() {
    QImage image = panel(144, 30);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(overlayScale, overlayScale);
    QPainterPath trace(QPointF(8, 15));
    for (int x = 9; x <= 36; ++x) {
        const double since = x - 14;
        const double swing = since < 0 ? 0 : 10 * std::exp(-since / 8) * std::sin(since * 1.6);
        trace.lineTo(x, 15 - swing);
    }
    painter.setPen(QPen(QColor(200, 0, 0), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(trace);
    painter.setPen(ink);
    painter.setFont(textFont(14, true));
    painter.drawText(QRectF(40, 0, 94, 30), Qt::AlignVCenter | Qt::AlignLeft,
                     QStringLiteral("TremorLedger"));
    return image;
}

QImage legend() {
    constexpr int width = 132;
    constexpr int rowHeight = 18;
    constexpr int depthTop = 26;
    constexpr int magnitudeTop = depthTop + rowHeight * static_cast<int>(depthColours.size()) + 6;
    QImage image = panel(width, magnitudeTop + 106);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(overlayScale, overlayScale);
    const auto heading = [&](int top, const QString& text) {
        painter.setFont(textFont(12, true));
        painter.setPen(ink);
        painter.drawText(QRectF(10, top, width - 20, 18), Qt::AlignVCenter, text);
        painter.setFont(textFont(12));
    };
    heading(6, QStringLiteral("Depth"));
    for (std::size_t i = 0; i < depthColours.size(); ++i) {
        const int middle = depthTop + rowHeight * static_cast<int>(i) + rowHeight / 2;
        drawEvent(painter, QPointF(20, middle), 6, QColor(QLatin1String(depthColours[i].colour)));
        painter.drawText(QRectF(36, middle - 9, width - 40, 18), Qt::AlignVCenter,
                         QString::fromUtf8(depthColours[i].range));
    }
    heading(magnitudeTop, QStringLiteral("Magnitude"));
    // The radius grows with the magnitude, 3 pixels for each unit as the program is delivered.
    const auto size = [&](double x, double middle, int magnitude) {
        drawEvent(painter, QPointF(x, middle), 3.0 * magnitude, QColor(225, 230, 234));
        painter.drawText(QRectF(x - 10, middle + 16, 20, 14), Qt::AlignCenter,
                         QString::number(magnitude));
    };
    size(16, magnitudeTop + 36, 1);
    size(34, magnitudeTop + 36, 2);
    size(60, magnitudeTop + 36, 3);
    size(96, magnitudeTop + 36, 4);
    drawEvent(painter, QPointF(20, magnitudeTop + 84), 6, Qt::white);
    painter.drawText(QRectF(36, magnitudeTop + 75, width - 40, 18), Qt::AlignVCenter,
                     QStringLiteral("no magnitude"));
    return image;
}

bool writeKmz(const QString& path, const QByteArray& document, const QString& pictureName,
              const QImage& picture) {
    QByteArray png;
    if (!picture.isNull()) {
        QBuffer buffer(&png);
        if (!picture.save(&buffer, "PNG"))
            return false;
    }
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return false;
    const bool added = addToZip(archive, "doc.kml", document) &&
                       (png.isEmpty() || addToZip(archive, pictureName.toUtf8(), png));
    if (added && zip_close(archive) == 0)
        return true;
    zip_discard(archive);
    return false;
}

QByteArray screenOverlayKml(const QString& name, const QString& pictureName, const QImage& picture,
                            const QString& overlayXY, const QString& screenXY) {
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2">
<ScreenOverlay>
<name>%1</name>
<Icon><href>%2</href></Icon>
<overlayXY %3/>
<screenXY %4/>
<size x="%5" y="%6" xunits="pixels" yunits="pixels"/>
</ScreenOverlay>
</kml>
)")
        .arg(name, pictureName, overlayXY, screenXY)
        .arg(picture.width() / overlayScale)
        .arg(picture.height() / overlayScale)
        .toUtf8();
}

QByteArray exampleFaultsKml() {
    const std::array<const char*, 3> lines{"11.20,40.60 11.55,40.35 12.05,40.15",
                                           "11.45,40.10 11.90,39.80 12.45,39.70",
                                           "12.35,40.50 12.70,40.20 12.80,39.95"};
    QString text = QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<kml xmlns="http://www.opengis.net/kml/2.2">
<Document>
<name>Example of a fault overlay</name>
<description>Schematic example lines in the sea, no real faults. Put a KML or KMZ file of your own in the place of this one.</description>
<Style id="fault"><LineStyle><color>ff2030c0</color><width>2</width></LineStyle></Style>
)");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        text +=
            QStringLiteral(
                "<Placemark><name>Example line %1 (no real fault)</name><styleUrl>#fault</styleUrl>"
                "<LineString><coordinates>%2</coordinates></LineString></Placemark>\n")
                .arg(i + 1)
                .arg(QLatin1String(lines[i]));
    }
    return (text + QStringLiteral("</Document>\n</kml>\n")).toUtf8();
}

} // namespace tremor::assets
