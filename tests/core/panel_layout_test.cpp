#include "core/panel_layout.h"

#include <gtest/gtest.h>

#include <array>

namespace tremor {
namespace {

constexpr std::int32_t menuHeight = 345; // 23 pixels

PanelLayout layoutOf(std::int32_t width, std::int32_t height) {
    return layoutPanel({width, height}, menuHeight);
}

std::int32_t bottom(const FormRectangle& r) {
    return r.top + r.height;
}

std::int32_t right(const FormRectangle& r) {
    return r.left + r.width;
}

TEST(HeldToMinimum, RaisesEachSideByItself) {
    EXPECT_EQ(heldToMinimum({13999, 9999}), (FormSize{14000, 10000}));
    EXPECT_EQ(heldToMinimum({14000, 10000}), (FormSize{14000, 10000}));
    EXPECT_EQ(heldToMinimum({20000, 1}), (FormSize{20000, 10000}));
    EXPECT_EQ(heldToMinimum({0, 15000}), (FormSize{14000, 15000}));
}

TEST(LayoutPanel, DerivesTheWorkspaceFromTheForm) {
    const PanelLayout layout = layoutOf(24000, 15000);
    EXPECT_EQ(layout.FrmWorkspace.height, 15000 - 3750);
    EXPECT_EQ(layout.WebBrowser1.height, 15000 - 3750 - 1150);
    EXPECT_EQ(layout.FrmWorkspace.width, 24000 - 5950);
    EXPECT_EQ(layout.WebBrowser1.width, 24000 - 5950 - 250);
}

TEST(LayoutPanel, PutsTheChartBelowTheWorkspace) {
    const PanelLayout layout = layoutOf(24000, 15000);
    EXPECT_EQ(layout.Frame2.top, bottom(layout.FrmWorkspace) + 50);
    EXPECT_EQ(layout.PicEvHist.height, layout.Frame2.height - 350);
    EXPECT_EQ(layout.Frame2.width, layout.FrmWorkspace.width);
    EXPECT_EQ(layout.PicEvHist.width, layout.WebBrowser1.width);
}

TEST(LayoutPanel, GivesTheGridTheHeightThatIsLeft) {
    const PanelLayout layout = layoutOf(14000, 10000);
    EXPECT_EQ(layout.GridEvents.height,
              10000 - layout.FrmLastEvent.height - layout.lst_prog_log.height - 3790);
    EXPECT_EQ(layoutOf(14000, 12000).GridEvents.height, layout.GridEvents.height + 2000);
}

TEST(LayoutPanel, PutsTheTownsAsideOfTheLogsEdge) {
    const PanelLayout layout = layoutOf(14000, 10000);
    EXPECT_EQ(layout.List1.left, layout.lst_prog_log.left + 600);
    EXPECT_EQ(right(layout.List1), right(layout.lst_prog_log));
}

TEST(LayoutPanel, KeepsAMarginOf150AtTheRightEndOfTheWorkspace) {
    const PanelLayout layout = layoutOf(17000, 11000);
    EXPECT_EQ(right(layout.picScaleControl), layout.FrmWorkspace.width - 150);
    EXPECT_EQ(right(layout.txtMouseCoord), layout.FrmWorkspace.width - 150);
}

TEST(LayoutPanel, FillsTheWindowWithoutOverlapAtEverySize) {
    for (const FormSize form : {FormSize{14000, 10000}, FormSize{24000, 15000},
                                FormSize{19000, 12345}, FormSize{60000, 40000}}) {
        const PanelLayout l = layoutPanel(form, menuHeight);
        const std::int32_t client = form.height - menuHeight;
        const std::array column{l.Label1,       l.FrmLastEvent,  l.List1,     l.logCaption,
                                l.lst_prog_log, l.eventsCaption, l.GridEvents};
        for (std::size_t i = 1; i < column.size(); ++i)
            EXPECT_LE(bottom(column[i - 1]), column[i].top) << i;
        for (const FormRectangle& r : column) {
            EXPECT_GT(r.height, 0);
            EXPECT_LT(right(r), l.FrmWorkspace.left);
        }
        EXPECT_EQ(bottom(l.GridEvents), client - 100);
        EXPECT_EQ(bottom(l.Frame2), client - 100);
        EXPECT_EQ(right(l.FrmWorkspace), form.width - 100);
        EXPECT_LE(bottom(l.statusStrip), l.FrmWorkspace.top);
        EXPECT_LT(right(l.workspaceCommands), l.picScaleControl.left);
        EXPECT_LE(bottom(l.workspaceChecks), l.WebBrowser1.top);
        EXPECT_LE(bottom(l.WebBrowser1), l.FrmWorkspace.height);
        EXPECT_LE(bottom(l.PicEvHist), l.Frame2.height);
    }
}

TEST(LayoutPanel, KeepsTheBottomEdgeUnderAHigherMenuBar) {
    const PanelLayout layout = layoutPanel({14000, 10000}, 500);
    EXPECT_EQ(bottom(layout.GridEvents), 10000 - 500 - 100);
    EXPECT_EQ(bottom(layout.Frame2), 10000 - 500 - 100);
}

TEST(IsOnSplitter, HoldsFrom45UpToButNotIncluding95) {
    EXPECT_FALSE(isOnSplitter(44));
    EXPECT_TRUE(isOnSplitter(45));
    EXPECT_TRUE(isOnSplitter(94));
    EXPECT_FALSE(isOnSplitter(95));
    EXPECT_FALSE(isOnSplitter(-45));
}

TEST(DragSplitter, MovesTheBorderByTheDistance) {
    const PanelLayout before = layoutOf(24000, 14000);
    PanelLayout layout = before;
    dragSplitter(layout, -300);
    EXPECT_EQ(layout.FrmWorkspace.height, before.FrmWorkspace.height - 300);
    EXPECT_EQ(layout.WebBrowser1.height, before.WebBrowser1.height - 300);
    EXPECT_EQ(layout.Frame2.top, before.Frame2.top - 300);
    EXPECT_EQ(layout.Frame2.height, before.Frame2.height + 300);
    EXPECT_EQ(layout.PicEvHist.height, before.PicEvHist.height + 300);
    EXPECT_EQ(layout.GridEvents, before.GridEvents);
}

TEST(DragSplitter, AcceptsBothLimitsThemselves) {
    PanelLayout layout = layoutOf(24000, 13000); // map frame 9250 high
    dragSplitter(layout, 7000 - 9250);
    EXPECT_EQ(layout.FrmWorkspace.height, 7000);
    dragSplitter(layout, 11085 - 7000);
    EXPECT_EQ(layout.FrmWorkspace.height, 11085);
}

TEST(DragSplitter, SnapsToTheChartBeyondTheLimits) {
    for (const std::int32_t distance : {6999 - 9250, 11086 - 9250, -9250, 30000}) {
        PanelLayout layout = layoutOf(24000, 13000);
        const PanelLayout before = layout;
        dragSplitter(layout, distance);
        EXPECT_EQ(layout.FrmWorkspace.height, before.Frame2.top - 500) << distance;
        EXPECT_EQ(layout.WebBrowser1.height, layout.FrmWorkspace.height - 1150);
        EXPECT_EQ(layout.Frame2, before.Frame2);
        EXPECT_EQ(layout.PicEvHist, before.PicEvHist);
    }
}

TEST(DragSplitter, SnappingClosesTheGapThatSeparatesTheFrames) {
    PanelLayout layout = layoutOf(24000, 13000);
    dragSplitter(layout, -1000);
    dragSplitter(layout, -5000);
    EXPECT_EQ(bottom(layout.FrmWorkspace) + 50, layout.Frame2.top);
}

TEST(DragSplitter, SnapsAtTheSmallestWindowWhoseMapFrameIsBelowTheLimit) {
    PanelLayout layout = layoutOf(14000, 10000);
    const PanelLayout before = layout;
    dragSplitter(layout, 60);
    EXPECT_EQ(layout.FrmWorkspace, before.FrmWorkspace);
    EXPECT_EQ(layout.Frame2, before.Frame2);
}

TEST(DragSplitter, NeverSqueezesTheChartAway) {
    PanelLayout layout = layoutOf(14000, 11000); // map frame 7250 high: far from its upper limit
    const PanelLayout before = layout;
    dragSplitter(layout, before.Frame2.height);
    EXPECT_EQ(layout.Frame2, before.Frame2);
    EXPECT_EQ(layout.FrmWorkspace, before.FrmWorkspace);
}

} // namespace
} // namespace tremor
