#pragma once

#include <QDir>
#include <QImage>
#include <QString>

#include <array>
#include <vector>

// The pictures of the maps and the icon. Everything is drawn in code, so that sizes and colours
// have one source.
namespace tremor::assets {

struct DepthColour {
    char letter; // of the pins' file names; 0: no pin has it
    const char* colour;
    const char* range; // as the legend writes it, kilometres
};

// The colours that the program gives to depths, shallow to deep.
inline constexpr std::array<DepthColour, 6> depthColours{{
    {'o', "#FF9900", "0 – 5 km"},
    {'y', "#FFFF00", "5 – 10 km"},
    {'g', "#33FF00", "10 – 20 km"},
    {'b', "#0033FF", "20 – 50 km"},
    {'v', "#9933FF", "50 – 100 km"},
    {0, "#FF0000", "over 100 km"},
}};

// Width and height of the pins in pixels, by class of magnitude from 0–1 up to 7–10.
inline constexpr std::array<int, 8> pinSizes{14, 18, 23, 28, 34, 44, 50, 58};

// A drop whose tip is the middle of the lower edge: there the maps anchor a picture.
QImage pin(const QColor& colour, int size);

// The pictures of the newest event's mark, 90 by 90: rings that run outwards.
std::vector<QImage> lastEventFrames();
// Writes an endless animation with one transparent colour. False: the file cannot be written.
bool writeGif(const QString& path, const std::vector<QImage>& frames, int hundredthsPerFrame);

// Drawn at twice their size on the screen.
inline constexpr int overlayScale = 2;
QImage logo();
QImage legend();

// Widths of the program's icon in pixels.
inline constexpr std::array<int, 5> iconSizes{48, 64, 128, 256, 512};
// Writes the icon in all sizes and as SVG, in the folders of an icon theme. False: a file cannot be
// written.
bool writeIcons(const QDir& folder);

// Writes a KMZ file: a document and, when there is one, its picture. False: it cannot be written.
bool writeKmz(const QString& path, const QByteArray& document, const QString& pictureName,
              const QImage& picture);
// A document that puts a picture at a fixed place of the screen; the texts are attributes of
// overlayXY and screenXY.
QByteArray screenOverlayKml(const QString& name, const QString& pictureName, const QImage& picture,
                            const QString& overlayXY, const QString& screenXY);
// Lines that only show what an overlay of faults looks like.
QByteArray exampleFaultsKml();

} // namespace tremor::assets
