#pragma once

#include "core/hosts.h"

#include <QtWebEngineCore/QWebEngineProfile>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tremor {

// Makes the scheme known under which the program itself answers the requests of its map pages. To
// be called before the application object is made.
void registerMapScheme();

// What the map pages are given when they ask for the maps script and for overlays:
//
//     tremor://engine/maps_engine.js     the embedded engine, from the program itself
//     tremor://overlays/LegendZ.kmz.txt  from the web host, or from Img/ when that gives none
//
// The pages ask for neither address; their requests are redirected.
class MapSite {
  public:
    struct Environment {
        Hosts hosts;
        std::string applicationPath; // folder of the executable, no "/" at its end
        // Folder or address in front of the pin images, asked anew for each picture.
        std::function<std::string()> pathPins;
        // Gets a line for the log when the web host fails.
        std::function<void(std::string_view)> report;
    };

    explicit MapSite(Environment environment);
    ~MapSite();
    MapSite(const MapSite&) = delete;
    MapSite& operator=(const MapSite&) = delete;

    // For the pages of this program alone: nothing is kept on disk, every page finds the agent by
    // which the program talks to it. Pages made with it must be gone before this object.
    QWebEngineProfile& profile() { return profile_; }

  private:
    class Requests;
    class Answers;

    void installScripts();

    Environment environment_;
    std::unique_ptr<Requests> requests_;
    std::unique_ptr<Answers> answers_;
    QWebEngineProfile profile_;
};

} // namespace tremor
