#include "drawings.h"

#include <QDir>
#include <QGuiApplication>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

namespace {

using namespace tremor::assets;

bool drawPins(const QDir& folder) {
    for (const DepthColour& depth : depthColours) {
        for (const int size : pinSizes) {
            const QString name =
                QStringLiteral("%1_%2.png").arg(QLatin1Char(depth.letter)).arg(size);
            if (depth.letter != 0 &&
                !pin(QColor(QLatin1String(depth.colour)), size).save(folder.filePath(name)))
                return false;
        }
    }
    return true;
}

bool drawOverlay(const QString& path, const QString& name, const QString& pictureName,
                 const QImage& picture, const QString& overlayXY, const QString& screenXY) {
    return writeKmz(path, screenOverlayKml(name, pictureName, picture, overlayXY, screenXY),
                    pictureName, picture);
}

bool drawAll(const QDir& folder) {
    const QString upperRight = QStringLiteral(R"(x="1" y="1" xunits="fraction" yunits="fraction")");
    const QString lowerRight = QStringLiteral(R"(x="1" y="0" xunits="fraction" yunits="fraction")");
    return drawPins(folder) &&
           writeGif(folder.filePath(QStringLiteral("lastepic.gif")), lastEventFrames(), 9) &&
           drawOverlay(folder.filePath(QStringLiteral("OrvaLogo.kmz.txt")),
                       QStringLiteral("TremorLedger"), QStringLiteral("logo.png"), logo(),
                       lowerRight,
                       QStringLiteral(R"(x="8" y="26" xunits="insetPixels" yunits="pixels")")) &&
           drawOverlay(
               folder.filePath(QStringLiteral("LegendZ.kmz.txt")), QStringLiteral("Legend"),
               QStringLiteral("legend.png"), legend(), upperRight,
               QStringLiteral(R"(x="8" y="24" xunits="insetPixels" yunits="insetPixels")")) &&
           writeKmz(folder.filePath(QStringLiteral("prova.kmz.txt")), exampleFaultsKml(), QString(),
                    QImage());
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fputs(
            "draw_assets PICTURES ICONS: draws pins, animation and overlays into one folder, "
            "the program's icon into another.\n",
            stderr);
        return EXIT_FAILURE;
    }
    const QDir pictures(QString::fromLocal8Bit(argv[1]));
    const QDir icons(QString::fromLocal8Bit(argv[2]));
    if (!pictures.mkpath(QStringLiteral(".")) || !drawAll(pictures) || !writeIcons(icons)) {
        std::fputs("The pictures could not be written.\n", stderr);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
