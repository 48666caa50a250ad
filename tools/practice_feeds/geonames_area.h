#pragma once

#include "practice_feeds/practice_service.h"

#include <map>
#include <string>
#include <string_view>

namespace tremor::practice {

// The export area of GeoNames (https://download.geonames.org/export/dump/) below /geonames: the
// index page in the layout of the service, countryInfo.txt and the dumps that a folder holds; any
// other name is 404. Documents are read once.
class GeoNamesArea {
  public:
    static constexpr std::string_view prefix = "/geonames"; // stands for the host
    static constexpr std::string_view requestPattern = "/geonames/export/dump/(.*)"; // regex

    // Throws std::runtime_error when the folder has no countryInfo.txt or no zip file.
    explicit GeoNamesArea(const std::string& folder);

    Answer answer(const Request& request) const;

  private:
    std::string indexPage() const;

    std::map<std::string, std::string> documents_; // by file name
};

} // namespace tremor::practice
