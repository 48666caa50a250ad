#include "journeys/screen_picture.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tremor::journeys {
namespace {

constexpr std::uint32_t frameColour = 0xB8B8B8; // of a map's or a picture's surface
constexpr int framePiece = 60;                  // pixels of one colour in a row that make a frame
constexpr unsigned darkest = 100;               // of 255: grid lines and captions are lighter

constexpr std::uint32_t xwdVersion = 7;
constexpr std::uint32_t colourEntry = 12; // bytes

std::uint32_t byteOf(const std::string& bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes.at(index));
}

// Numbers of the header have the high byte first.
std::uint32_t headerField(const std::string& xwd, std::size_t number) {
    const std::size_t first = 4 * number;
    return byteOf(xwd, first) << 24U | byteOf(xwd, first + 1) << 16U |
           byteOf(xwd, first + 2) << 8U | byteOf(xwd, first + 3);
}

unsigned channel(std::uint32_t colour, int shift) {
    return (colour >> shift) & 0xFFU;
}

} // namespace

ScreenPicture::ScreenPicture(std::string xwd) : xwd_(std::move(xwd)) {
    const std::size_t headerSize = headerField(xwd_, 0);
    width_ = static_cast<int>(headerField(xwd_, 4));
    height_ = static_cast<int>(headerField(xwd_, 5));
    stride_ = headerField(xwd_, 12);
    begin_ = headerSize + std::size_t{colourEntry} * headerField(xwd_, 19);
    const bool lowByteFirst = headerField(xwd_, 7) == 0;
    if (headerField(xwd_, 1) != xwdVersion || headerField(xwd_, 11) != 32 || !lowByteFirst ||
        xwd_.size() < begin_ + stride_ * static_cast<std::size_t>(height_))
        throw std::runtime_error("no picture of the screen");
}

std::uint32_t ScreenPicture::at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width_ || y >= height_)
        return 0;
    const std::size_t pixel =
        begin_ + stride_ * static_cast<std::size_t>(y) + 4 * static_cast<std::size_t>(x);
    return byteOf(xwd_, pixel + 2) << 16U | byteOf(xwd_, pixel + 1) << 8U | byteOf(xwd_, pixel);
}

bool ScreenPicture::isDark(int x, int y) const {
    const std::uint32_t colour = at(x, y);
    return channel(colour, 16) < darkest && channel(colour, 8) < darkest &&
           channel(colour, 0) < darkest;
}

std::optional<Spot> ScreenPicture::spot(const Rectangle& where, std::uint32_t colour) const {
    Spot spot;
    for (int y = where.y; y < where.y + where.height; ++y) {
        for (int x = where.x; x < where.x + where.width; ++x) {
            if (at(x, y) != colour)
                continue;
            ++spot.pixels;
            spot.x += x + 0.5;
            spot.y += y + 0.5;
        }
    }
    if (spot.pixels == 0)
        return std::nullopt;
    spot.x /= static_cast<double>(spot.pixels);
    spot.y /= static_cast<double>(spot.pixels);
    return spot;
}

long ScreenPicture::count(const Rectangle& where, std::uint32_t colour) const {
    const std::optional<Spot> found = spot(where, colour);
    return found ? found->pixels : 0;
}

bool ScreenPicture::isFrame(int x, int y, int stepX, int stepY) const {
    for (int i = -framePiece / 2; i < framePiece / 2; ++i)
        if (at(x + i * stepX, y + i * stepY) != frameColour)
            return false;
    return true;
}

Rectangle ScreenPicture::surfaceAround(int x, int y) const {
    int left = x;
    int right = x;
    int top = y;
    int bottom = y;
    while (left >= 0 && !isFrame(left, y, 0, 1))
        --left;
    while (right < width_ && !isFrame(right, y, 0, 1))
        ++right;
    while (top >= 0 && !isFrame(x, top, 1, 0))
        --top;
    while (bottom < height_ && !isFrame(x, bottom, 1, 0))
        ++bottom;
    return {left + 1, top + 1, right - left - 1, bottom - top - 1};
}

std::vector<ScreenPicture::Line> ScreenPicture::linesOfText(const Rectangle& where) const {
    std::vector<Line> lines;
    bool inLine = false;
    for (int y = where.y; y < where.y + where.height; ++y) {
        bool dark = false;
        for (int x = where.x; x < where.x + where.width && !dark; ++x)
            dark = isDark(x, y);
        if (dark && !inLine)
            lines.push_back({y, 0});
        if (dark)
            ++lines.back().height;
        inLine = dark;
    }
    return lines;
}

std::vector<std::string> ScreenPicture::ink(const Rectangle& where) const {
    std::vector<std::string> rows;
    auto left = std::string::npos;
    for (int y = where.y; y < where.y + where.height; ++y) {
        std::string row;
        for (int x = where.x; x < where.x + where.width; ++x)
            row += isDark(x, y) ? '#' : ' ';
        row.erase(row.find_last_not_of(' ') + 1);
        if (row.empty() && rows.empty())
            continue;
        left = std::min(left, row.find('#'));
        rows.push_back(row);
    }
    while (!rows.empty() && rows.back().empty())
        rows.pop_back();
    for (std::string& row : rows)
        row.erase(0, left);
    return rows;
}

} // namespace tremor::journeys
