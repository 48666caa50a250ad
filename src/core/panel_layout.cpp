#include "core/panel_layout.h"

#include <algorithm>

namespace tremor {
namespace {

constexpr std::int32_t margin = 100;      // at the edges of the window and between the columns
constexpr std::int32_t gap = 75;          // between neighbours in a column
constexpr std::int32_t stripHeight = 450; // the line above the frames
constexpr std::int32_t controlHeight = 375;
constexpr std::int32_t captionHeight = 270; // also the title of a frame
constexpr std::int32_t frameBorder = 125;

constexpr std::int32_t leftColumnWidth = 5650;
constexpr std::int32_t rightColumnLeft = margin + leftColumnWidth + margin;
constexpr std::int32_t besideWorkspace = 5950;
constexpr std::int32_t belowWorkspace = 3750;
constexpr std::int32_t aboveMap = 1150;  // what FrmWorkspace is higher than its map
constexpr std::int32_t besideMap = 250;  // what it is wider
constexpr std::int32_t aboveChart = 350; // what Frame2 is higher than its chart
constexpr std::int32_t betweenFrames = 50;
constexpr std::int32_t besideGrid = 3790; // what is neither grid, log nor last-event frame
constexpr std::int32_t lastEventHeight = 2550;
constexpr std::int32_t logHeight = 1650;
constexpr std::int32_t townsIndent = 600;
constexpr std::int32_t rightEndMargin = 150;
constexpr std::int32_t scaleWidth = 1080;
constexpr std::int32_t coordinatesWidth = 3000;

constexpr std::int32_t splitterBegin = 45;
constexpr std::int32_t splitterEnd = 95;
constexpr std::int32_t lowestMapFrame = 7000;
constexpr std::int32_t highestMapFrame = 11085;
constexpr std::int32_t snapDistance = 500;
constexpr std::int32_t lowestChart = 600;

void layoutLeftColumn(PanelLayout& layout, FormSize form, std::int32_t menuHeight) {
    const auto below = [](const FormRectangle& above, std::int32_t distance, std::int32_t height) {
        return FormRectangle{margin, above.top + above.height + distance, leftColumnWidth, height};
    };
    layout.Label1 = {margin, 0, leftColumnWidth, stripHeight};
    layout.FrmLastEvent = below(layout.Label1, 0, lastEventHeight);
    layout.wbr_last = {frameBorder, captionHeight, leftColumnWidth - 2 * frameBorder,
                       lastEventHeight - captionHeight - frameBorder};

    // The towns take what the fixed rows leave of besideGrid.
    constexpr std::int32_t fixedRows = stripHeight + 2 * captionHeight + 3 * gap + margin;
    layout.List1 = below(layout.FrmLastEvent, gap, besideGrid - fixedRows - menuHeight);
    layout.townsCaption = layout.List1;
    layout.townsCaption.width = townsIndent;
    layout.List1.left += townsIndent;
    layout.List1.width -= townsIndent;

    layout.logCaption = below(layout.List1, gap, captionHeight);
    layout.lst_prog_log = below(layout.logCaption, 0, logHeight);
    layout.eventsCaption = below(layout.lst_prog_log, gap, captionHeight);
    layout.GridEvents =
        below(layout.eventsCaption, 0, form.height - lastEventHeight - logHeight - besideGrid);
}

void layoutWorkspace(PanelLayout& layout, FormSize form) {
    const std::int32_t width = form.width - besideWorkspace;
    layout.FrmWorkspace = {rightColumnLeft, stripHeight, width, form.height - belowWorkspace};
    const std::int32_t scaleLeft = width - rightEndMargin - scaleWidth;
    layout.workspaceCommands = {frameBorder, captionHeight, scaleLeft - gap - frameBorder,
                                controlHeight};
    layout.picScaleControl = {scaleLeft, captionHeight, scaleWidth, controlHeight};
    layout.workspaceChecks = {frameBorder, captionHeight + controlHeight, width - besideMap,
                              aboveMap - frameBorder - captionHeight - controlHeight};
    // The coordinates stand at the end of the frame's title line.
    layout.txtMouseCoord = {width - rightEndMargin - coordinatesWidth, 0, coordinatesWidth,
                            captionHeight};
    layout.WebBrowser1 = {frameBorder, aboveMap - frameBorder, width - besideMap,
                          layout.FrmWorkspace.height - aboveMap};
}

void layoutChart(PanelLayout& layout, FormSize form, std::int32_t menuHeight) {
    const FormRectangle& map = layout.FrmWorkspace;
    const std::int32_t top = map.top + map.height + betweenFrames;
    layout.Frame2 = {map.left, top, map.width, form.height - menuHeight - margin - top};
    layout.PicEvHist = {frameBorder, captionHeight, map.width - besideMap,
                        layout.Frame2.height - aboveChart};
}

} // namespace

FormSize heldToMinimum(FormSize size) {
    return {std::max(size.width, minimumFormSize.width),
            std::max(size.height, minimumFormSize.height)};
}

PanelLayout layoutPanel(FormSize form, std::int32_t menuHeight) {
    PanelLayout layout;
    layoutWorkspace(layout, form);
    layoutChart(layout, form, menuHeight);
    layoutLeftColumn(layout, form, menuHeight);
    layout.statusStrip = {rightColumnLeft, 0, layout.FrmWorkspace.width, stripHeight};
    return layout;
}

bool isOnSplitter(std::int32_t y) {
    return y >= splitterBegin && y < splitterEnd;
}

void dragSplitter(PanelLayout& layout, std::int32_t y) {
    const std::int32_t height = layout.FrmWorkspace.height + y;
    const bool chartTooLow = layout.PicEvHist.height - y < lowestChart;
    if (height < lowestMapFrame || height > highestMapFrame || chartTooLow) {
        layout.FrmWorkspace.height = layout.Frame2.top - snapDistance;
        layout.WebBrowser1.height = layout.FrmWorkspace.height - aboveMap;
        return;
    }
    layout.FrmWorkspace.height += y;
    layout.WebBrowser1.height += y;
    layout.Frame2.top += y;
    layout.Frame2.height -= y;
    layout.PicEvHist.height -= y;
}

} // namespace tremor
