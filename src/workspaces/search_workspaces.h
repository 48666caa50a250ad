#pragma once

#include "workspaces/search_surroundings.h"

#include <optional>
#include <string>
#include <vector>

namespace tremor {

// The filters of a workspace as the search window shows them: corners as dot text, the other
// numbers in the form of the locale.
struct WorkspaceFilters {
    std::string BLat; // south-west corner
    std::string BLng;
    std::string TLat; // north-east corner
    std::string TLng;
    std::string MagMin;
    std::string MagMax;
    std::string DepthMin;
    std::string DepthMax;
};

// The area and the ranges of a search, to be kept as a workspace. Dot texts.
struct SearchedArea {
    MapBounds bounds;
    std::string magMin;
    std::string magMax;
    double depthMin = 0; // kilometres
    double depthMax = 0;
};

// The workspaces from which a search takes its filters and into which it saves them.
class SearchWorkspaces {
  public:
    explicit SearchWorkspaces(const SearchContext& context);

    std::vector<std::string> popolacmbWrkspace(); // the names, as the engine orders them

    // The filters of the workspace in use (settings.LastWorkSpace); nothing when there is no such
    // row. What is no number in it reads as 0.
    std::optional<WorkspaceFilters> loadFromWorkspace();

    // Stores the area under `name`, with the map's present centre and zoom, and makes it the
    // workspace in use. An existing workspace is replaced only when the operator agrees. Without
    // an answer of the map nothing is stored. Names are not checked; one with an apostrophe is
    // refused by the catalogue, which the log tells.
    void SavingWrkSpace(const std::string& name, const SearchedArea& area);

  private:
    bool mayStore(const std::string& name, std::string& verb);

    SearchContext context_;
};

} // namespace tremor
