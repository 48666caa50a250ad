#pragma once

#include "journeys/journey.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tremor::journeys {

// Where the pixels of one colour are.
struct Spot {
    long pixels = 0;
    double x = 0; // their middle
    double y = 0;
};

// What stood on the screen at a moment. Colours are 0xRRGGBB; rectangles and points are those of
// the screen, and what lies outside of the picture is black.
class ScreenPicture {
  public:
    // From the memory of a virtual screen of 24 bits, in XWD format; std::runtime_error when it is
    // none.
    explicit ScreenPicture(std::string xwd);

    std::uint32_t at(int x, int y) const;
    bool isDark(int x, int y) const; // like ink on paper
    std::optional<Spot> spot(const Rectangle& where, std::uint32_t colour) const;
    long count(const Rectangle& where, std::uint32_t colour) const;

    // The inside of the framed surface around a point.
    Rectangle surfaceAround(int x, int y) const;

    // Heights at which lines of text stand in a column of paper.
    struct Line {
        int top = 0;
        int height = 0;
    };
    std::vector<Line> linesOfText(const Rectangle& where) const;

    // The dark pixels, cut to where there are any: equal for equal text in the same font.
    std::vector<std::string> ink(const Rectangle& where) const;

  private:
    bool isFrame(int x, int y, int stepX, int stepY) const;

    int width_ = 0;
    int height_ = 0;
    std::size_t begin_ = 0; // of the pixels
    std::size_t stride_ = 0;
    std::string xwd_;
};

} // namespace tremor::journeys
