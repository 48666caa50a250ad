#pragma once

#include <cstdint>

// Where everything stands in the main window: pure functions of its size. All lengths are twips
// (1/1440 inch, 15 to a pixel at 96 dpi) and every rectangle is relative to its parent.
namespace tremor {

struct FormSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const FormSize&) const = default;
};

struct FormRectangle {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const FormRectangle&) const = default;
};

// The smallest main window, menu bar included and frame of the desktop excluded.
inline constexpr FormSize minimumFormSize{14000, 10000};

FormSize heldToMinimum(FormSize size);

// Rectangles of the controls. Those inside a frame are relative to the frame, all others to the
// area below the menu bar.
struct PanelLayout {
    FormRectangle Label1;
    FormRectangle statusStrip; // lbl_log_bkg, lbl_events, prgBar, lbl_tot
    FormRectangle FrmLastEvent;
    FormRectangle wbr_last; // in FrmLastEvent
    FormRectangle townsCaption;
    FormRectangle List1;
    FormRectangle logCaption;
    FormRectangle lst_prog_log;
    FormRectangle eventsCaption;
    FormRectangle GridEvents;
    FormRectangle FrmWorkspace;
    FormRectangle workspaceCommands; // in FrmWorkspace: the combo and the buttons
    FormRectangle workspaceChecks;   // in FrmWorkspace: the check boxes
    FormRectangle picScaleControl;   // in FrmWorkspace
    FormRectangle txtMouseCoord;     // in FrmWorkspace
    FormRectangle WebBrowser1;       // in FrmWorkspace
    FormRectangle Frame2;
    FormRectangle PicEvHist; // in Frame2
};

// The layout after a resize: the splitter goes back to its standing place. `form` is at least
// minimumFormSize, `menuHeight` the height of the menu bar in it.
PanelLayout layoutPanel(FormSize form, std::int32_t menuHeight);

// True when the pointer, `y` below the top of Frame2, stands on the splitter between FrmWorkspace
// and Frame2.
bool isOnSplitter(std::int32_t y);

// A move of the pointer to `y` below the top of Frame2 with the button down. A map frame below 7000
// or above 11085, or a chart too low to be drawn, snaps the map frame to the chart's top.
void dragSplitter(PanelLayout& layout, std::int32_t y);

} // namespace tremor
