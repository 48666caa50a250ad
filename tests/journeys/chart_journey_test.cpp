#include "core/panel_layout.h"
#include "journeys/view_journey.h"

#include <cstdlib>

namespace tremor::journeys {
namespace {

constexpr int twipsPerPixel = 15; // at 96 dpi
constexpr int menuHeight = 22;    // pixels, about

class ChartJourney : public ViewJourney {
  protected:
    void SetUp() override { showEverything(); }

    // A line in the gap between the map's frame and the chart's.
    Rectangle splitter() {
        const Rectangle window = journey_.geometry(mainWindow);
        const PanelLayout layout =
            layoutPanel({window.width * twipsPerPixel, window.height * twipsPerPixel},
                        menuHeight * twipsPerPixel);
        const FormRectangle& frame = layout.Frame2;
        return {window.x + (frame.left + frame.width / 2) / twipsPerPixel,
                window.y + menuHeight + frame.top / twipsPerPixel + 4, 0, 0};
    }
};

TEST_F(ChartJourney, HasABarForEachEventAfterTheStart) {
    EXPECT_TRUE(chartShowsLatestHours(everything));
    // And without those that have left the sight of the map.
    journey_.click(map_.x + map_.width / 2, map_.y + map_.height / 2, 4);
    ASSERT_TRUE(soon([&] { return rows().size() < selected(everything).size(); }));
    const double reach = map_.width / 2.0 * 360 / (256 * 64); // degrees
    EXPECT_TRUE(chartShowsLatestHours("abs(Longitude - 12) < " + std::to_string(reach) +
                                      " and Latitude between 39 and 44.8"));
}

TEST_F(ChartJourney, IsDrawnAnewInTheSizeThatTheSplitterGivesIt) {
    journey_.resize(mainWindow, 1200, 800);
    Rectangle before;
    ASSERT_TRUE(soon([&] {
        findSurfaces();
        before = chart();
        return map_.width > 600 && before.width > 600;
    }));
    EXPECT_TRUE(chartShowsLatestHours(everything));

    const Rectangle line = splitter();
    constexpr int way = 60;
    constexpr int grip = 8; // the frame's edge comes to the pointer
    journey_.drag(line.x, line.y, line.x, line.y - way);
    journey_.movePointer(0, 0); // its picture covers a piece of the frame
    EXPECT_TRUE(soon([&] { return std::abs(chart().height - before.height - way) < grip; }))
        << chart().height << " from " << before.height << ", dragged at " << line.x << ","
        << line.y;
    EXPECT_TRUE(chartShowsLatestHours(everything));
}

} // namespace
} // namespace tremor::journeys
