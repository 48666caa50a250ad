#pragma once

#include "core/session.h"
#include "database/database.h"
#include "manage/geonames_import.h"
#include "manage/zip_builder.h"
#include "support/fakes.h"
#include "support/texts.h"

#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor::testing {

inline std::string geonamesDocument(const std::string& name) {
    std::string text = contentOf(TREMOR_TEST_DATA "/geonames/" + name);
    EXPECT_FALSE(text.empty()) << name;
    return text;
}

// A line of the service's index page.
inline std::string indexLine(const std::string& file) {
    return "<img src=\"/icons/compressed.gif\" alt=\"[   ]\"> <a href=\"" + file + "\">" + file +
           "</a>  2025-11-19 03:05   61K  \n";
}

// A line of a dump: 19 fields as the service sends them.
inline std::string dumpLine(const std::string& name, const std::string& featureCode,
                            const std::string& latitude = "42.5",
                            const std::string& longitude = "13.25") {
    return "1\t" + name + "\t" + name + "\t\t" + latitude + "\t" + longitude + "\tP\t" +
           featureCode + "\tXX\t\t07\t\t\t\t4500\t\t683\tEurope/Rome\t2023-08-07\n";
}

// Gives documents by their path below the host; what has none fails.
class ScriptedNetwork : public GeoNamesNetwork {
  public:
    bool IsInternetUp() override { return internetUp; }
    void DownloadFile(GeoNamesTransferEvents& events, std::string_view url, std::string_view target,
                      std::int32_t chunkSize) override {
        EXPECT_EQ(chunkSize, 4096);
        urls.emplace_back(url);
        std::remove(std::string(target).c_str());
        if (whileDownloading)
            whileDownloading(events);
        const auto document = documents.find(std::string(url));
        if (aborted || document == documents.end())
            return;
        std::ofstream(std::string(target), std::ios::binary) << document->second;
        events.DownloadCompleted();
    }
    void AbortDownload() override { aborted = true; }

    bool internetUp = true;
    bool aborted = false;
    std::map<std::string, std::string> documents;
    std::vector<std::string> urls;
    std::function<void(GeoNamesTransferEvents&)> whileDownloading;
};

class RecordingGeoNamesWindow : public GeoNamesWindow {
  public:
    void addToLog(std::string_view message) override { messages.emplace_back(message); }
    void setProgressMaximum(int value) override { maximum = value; }
    void setProgress(int value) override {
        EXPECT_LE(value, maximum);
        progress.push_back(value);
    }
    void setLineText(std::string_view text) override { lineTexts.emplace_back(text); }
    void showRows() override { ++fills; }
    void showRunning(bool running) override { states.push_back(running); }

    std::vector<std::string> messages;
    int maximum = 100;
    std::vector<int> progress;
    std::vector<std::string> lineTexts;
    int fills = 0;
    std::vector<bool> states;
};

// An empty catalogue, a network with the service's own list of countries and three dumps on it.
struct GeoNamesHarness {
    GeoNamesHarness() {
        catalogue.slsOpen(folder.file("catalogue.sqlite"), "C");
        catalogue.slsExe("CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, "
                         "'Longitude' TEXT, 'Zone' TEXT);");
        offer("", indexLine("AD.zip") + indexLine("FR.zip") + indexLine("IT.zip") +
                      indexLine("allCountries.zip") + indexLine("XX.zip"));
        offer("countryInfo.txt", geonamesDocument("countryInfo.txt"));
        offer("AD.zip", geonamesDocument("AD.zip"));
    }

    void offer(const std::string& name, const std::string& document) {
        network.documents["https://geonames.test/export/dump/" + name] = document;
    }
    void offerDump(const std::string& zone, const std::string& dump) {
        const std::string path = folder.file("packed.zip");
        makeZip(path, {{.name = zone + ".txt", .bytes = dump}});
        offer(zone + ".zip", contentOf(path));
    }
    std::vector<std::string> stored(const std::string& what = "Name || '|' || Latitude || '|' || "
                                                              "Longitude || '|' || Zone") {
        std::vector<std::string> rows;
        catalogue.slsSel("select " + what + " from Cities order by rowid");
        while (catalogue.slsGetRow())
            rows.push_back(catalogue.slsFX(1));
        return rows;
    }
    std::size_t rowOf(const GeoNamesImport& import, const std::string& id) const {
        for (std::size_t row = 0; row < import.rows().size(); ++row) {
            if (import.rows()[row].file.Id == id)
                return row;
        }
        ADD_FAILURE() << "no row of " << id;
        return 0;
    }

    TemporaryFolder folder;
    Session session;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
    Database catalogue;
    ScriptedNetwork network;
};

} // namespace tremor::testing
