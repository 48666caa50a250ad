#include "drawings.h"

#include <QFile>
#include <QPainter>

#include <gif_lib.h>

#include <algorithm>
#include <memory>

namespace tremor::assets {
namespace {

constexpr int side = 90;
constexpr int frameCount = 8;

// 0 is transparent, 1 white, then reds from dark to light.
const std::array<GifColorType, 8> palette{{{0, 0, 0},
                                           {255, 255, 255},
                                           {150, 0, 0},
                                           {200, 0, 0},
                                           {235, 20, 20},
                                           {255, 70, 60},
                                           {255, 130, 115},
                                           {255, 190, 180}}};

GifByteType nearestColour(QRgb pixel) {
    if (qAlpha(pixel) < 128)
        return 0;
    const auto distance = [pixel](const GifColorType& colour) {
        const int red = qRed(pixel) - colour.Red;
        const int green = qGreen(pixel) - colour.Green;
        const int blue = qBlue(pixel) - colour.Blue;
        return red * red + green * green + blue * blue;
    };
    const auto nearest =
        std::min_element(palette.begin() + 1, palette.end(),
                         [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
    return static_cast<GifByteType>(nearest - palette.begin());
}

struct GifCloser {
    void operator()(GifFileType* file) const { EGifCloseFile(file, nullptr); }
};

bool startGif(GifFileType* gif) {
    const std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)> colours(
        GifMakeMapObject(static_cast<int>(palette.size()), palette.data()), &GifFreeMapObject);
    EGifSetGifVersion(gif, true);
    // The extension with which browsers repeat an animation endlessly.
    const std::array<GifByteType, 3> endless{1, 0, 0};
    return EGifPutScreenDesc(gif, side, side, 3, 0, colours.get()) == GIF_OK &&
           EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK &&
           EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK &&
           EGifPutExtensionBlock(gif, 3, endless.data()) == GIF_OK &&
           EGifPutExtensionTrailer(gif) == GIF_OK;
}

bool writeFrame(GifFileType* gif, const QImage& frame, int hundredths) {
    GraphicsControlBlock control{};
    control.DisposalMode = DISPOSE_BACKGROUND;
    control.DelayTime = hundredths;
    control.TransparentColor = 0;
    std::array<GifByteType, 4> extension{};
    const auto length = static_cast<int>(EGifGCBToExtension(&control, extension.data()));
    if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, length, extension.data()) != GIF_OK ||
        EGifPutImageDesc(gif, 0, 0, side, side, false, nullptr) != GIF_OK)
        return false;
    std::array<GifByteType, side> row{};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            row[static_cast<std::size_t>(x)] = nearestColour(frame.pixel(x, y));
        if (EGifPutLine(gif, row.data(), side) != GIF_OK)
            return false;
    }
    return true;
}

} // namespace

std::vector<QImage> lastEventFrames() {
    std::vector<QImage> frames;
    for (int i = 0; i < frameCount; ++i) {
        QImage frame(side, side, QImage::Format_ARGB32);
        frame.fill(Qt::transparent);
        QPainter painter(&frame);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF middle(side / 2.0, side / 2.0);
        painter.setBrush(Qt::NoBrush);
        for (int ring = 0; ring < 2; ++ring) {
            // The second ring starts where the first one is when the frames begin anew.
            const double progress = (ring + static_cast<double>(i) / frameCount) / 2;
            const int light = static_cast<int>(190 * progress);
            painter.setPen(QPen(QColor(255, light, light), 5 - 3.5 * progress));
            painter.drawEllipse(middle, 10 + 33 * progress, 10 + 33 * progress);
        }
        painter.setPen(QPen(Qt::white, 2));
        painter.setBrush(QColor(200, 0, 0));
        painter.drawEllipse(middle, 8, 8);
        painter.end();
        frames.push_back(frame);
    }
    return frames;
}

bool writeGif(const QString& path, const std::vector<QImage>& frames, int hundredthsPerFrame) {
    int error = 0;
    const std::unique_ptr<GifFileType, GifCloser> gif(
        EGifOpenFileName(QFile::encodeName(path).constData(), false, &error));
    return gif && startGif(gif.get()) &&
           std::all_of(frames.begin(), frames.end(), [&](const QImage& frame) {
               return writeFrame(gif.get(), frame, hundredthsPerFrame);
           });
}

} // namespace tremor::assets
