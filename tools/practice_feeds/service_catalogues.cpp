#include "practice_feeds/service_catalogues.h"

#include "practice_feeds/epicentres.h"

#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

// A solution of SeisComP takes over every row of its time, so that no other source may have just
// these times: here local origins are earlier.
constexpr auto localLag = 3s;

UtcTime systemNow() {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

FdsnDocument readDocument(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + path);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    try {
        return parseFdsnDocument(text);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

} // namespace

GrowingCatalogue ingvCatalogue(const std::string& dataFolder, const CatalogueOptions& options) {
    const std::string folder = dataFolder + "/ingv/";
    return {readDocument(folder + "ingv_2026-06-15_2026-06-29.txt"),
            drawFrom(readDocument(folder + "derived_laquila_2009-04-06.txt")), options, systemNow};
}

// The program asks the USGS for whole days that are over, so there must be some.
GrowingCatalogue usgsCatalogue(const CatalogueOptions& options) {
    return madeUpCatalogue(worldReporting(), 240, 240h, options, systemNow);
}

GrowingCatalogue emscCatalogue(const CatalogueOptions& options) {
    return madeUpCatalogue(euroMediterraneanReporting(), 60, 24h, options, systemNow);
}

GrowingCatalogue localCatalogue(const CatalogueOptions& options) {
    return madeUpCatalogue(localReporting(), 3, 6h, options, [] { return systemNow() - localLag; });
}

} // namespace tremor::practice
