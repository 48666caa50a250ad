#pragma once

#include "core/error_report.h"
#include "map/picture.h"
#include "map/web_browser.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// Pictures of the maps, for other tools or a web page to show. They stand in the folder History
// beside the program:
//
//     tmpcurrent.sr      the workspace map, a JPEG that waits for the next turn of the timer
//     current.jpg        the workspace map, always a whole picture
//     tmplastEvent.jpg   the map of the newest event
//     lastEvents.txt     the newest event and the towns near it
//     currentNAME.JPG    the map of the workspace NAME
namespace tremor {

enum class SnapshotKind { WorkspaceMap = 1, LastEvent = 2, NamedWorkspace = 3 };

// The newest event as the main window holds it, dot texts.
struct SnapshotEvent {
    std::string UTC;
    std::string latitude;
    std::string longitude;
    std::string magnitude;
    std::string depth; // km
};

// What the snapshots ask of the main window.
class SnapshotSurroundings {
  public:
    virtual ~SnapshotSurroundings() = default;

    virtual bool takeDocumentReady() = 0; // once true for each reload of the workspace map
    virtual void onclickEventi() = 0;     // draws its markers
    virtual void pin2gif(std::string_view lastEventSql) = 0;
    virtual std::string shownCondition() = 0; // of the events on the workspace map
    virtual SnapshotEvent lastEvent() const = 0;
    virtual std::vector<std::string> towns() const = 0; // entries of `List1`, UTF-8
};

// Saves a picture in one of the four formats, as GDIPlusDCToFile does.
using PictureSaver =
    std::function<void(const Picture& picture, std::string_view path, std::int32_t format)>;

// A failure is told by the runtime-error box once for a file, and again only after that file has
// been written: the pictures are taken at every poll.
class MapSnapshots {
  public:
    MapSnapshots(std::string applicationPath, SnapshotSurroundings& surroundings, PictureSaver save,
                 ErrorReport& errors);

    // Saves what a browser shows, less the room of a scroll bar (17 pixels) and of an edge (2) at
    // its right. `name` is that of the workspace for SnapshotKind::NamedWorkspace; one that cannot
    // name a page has no picture. A page that is not painted (yet) leaves everything as it is.
    void mapsInJPG(WebBrowser& browser, SnapshotKind kind, std::string_view name);

    // Every five seconds: draws the markers of a map that was loaded anew, and turns the picture
    // that waits into current.jpg.
    void TimerCheckScreenshot_Timer();

  private:
    std::string historyFile(std::string_view name) const;
    bool tellOnce(ProcedureTrace& trace, const std::string& file,
                  const std::function<void()>& write);
    void saveJpeg(ProcedureTrace& trace, const std::string& file, const Picture& picture);
    void saveLastEvent(ProcedureTrace& trace, const Picture& picture);

    std::string applicationPath_;
    SnapshotSurroundings& surroundings_;
    PictureSaver save_;
    ErrorReport& errors_;
    std::set<std::string> failed_; // files whose failure was told
};

} // namespace tremor
