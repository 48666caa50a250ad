// The KML file as other programs read it: GDAL's ogr2ogr and libxml2's xmllint.
#include "core/common_text.h"
#include "core/files.h"
#include "map/kml_writer.h"
#include "map/marker_list.h"
#include "support/fakes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

// What a command prints; the test fails when it does not end well.
std::string output(const std::string& command) {
    std::FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return {};
    }
    std::string text;
    std::array<char, 4096> buffer{};
    std::size_t count = 0;
    while ((count = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
        text.append(buffer.data(), count);
    EXPECT_EQ(::pclose(pipe), 0) << command << '\n' << text;
    return text;
}

class KmlReaders : public ::testing::Test {
  protected:
    struct Event {
        std::string utc;
        std::string latitude;
        std::string longitude;
        std::string magnitude;
        std::string depth;
        std::string source;
    };

    void write(const std::vector<Event>& events) {
        MarkerList utc;
        MarkerList latitude;
        MarkerList longitude;
        MarkerList magnitude;
        MarkerList depth;
        MarkerList source;
        for (const Event& event : events) {
            utc.Add(event.utc);
            latitude.Add(event.latitude);
            longitude.Add(event.longitude);
            magnitude.Add(event.magnitude);
            depth.Add(event.depth);
            source.Add(event.source);
        }
        writer.KmlGenerator(utc.text(), latitude.text(), longitude.text(), magnitude.text(), "'",
                            depth.text(), source.text());
    }

    // The placemarks as ogr2ogr finds them, in CSV.
    std::string placemarks() const {
        return output("ogr2ogr -f CSV /vsistdout/ " + path() + " -lco GEOMETRY=AS_XY");
    }
    void expectWellFormed() const { EXPECT_EQ(output("xmllint --nonet --noout " + path()), ""); }
    std::string path() const { return folder.file("tremorledger.kml"); }

    testing::TemporaryFolder folder;
    testing::ErrorHarness harness;
    KmlWriter writer{folder.path(), "https://maps.example.org", NumberLocale::point(),
                     harness.errors};
};

TEST_F(KmlReaders, FindTheEventsWithTheirNamesPlacesAndDescriptions) {
    write({{"2016-08-24 01:36:32.000", "42.698", "13.234", "6.0", "8.1", "INGV"},
           {"2018-06-04 01:50:48.520", "-19.4", "-155.25", "5.5", "0.3", "USGS"}});
    expectWellFormed();
    const std::string csv = placemarks();
    EXPECT_NE(csv.find("13.234,42.698,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("-155.25,-19.4,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("2016-08-24 01:36:32.000 Mg: 6.0,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("2018-06-04 01:50:48.520 Mg: 5.5,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("<ul><li>UTC: 2016-08-24 01:36:32.000</li>"), std::string::npos) << csv;
    EXPECT_NE(csv.find("<li>Depth: 0.3</li>"), std::string::npos) << csv;
    EXPECT_NE(csv.find("<li>Source: USGS</li>"), std::string::npos) << csv;
}

TEST_F(KmlReaders, TakeADocumentWithoutEvents) {
    write({});
    expectWellFormed();
    const std::string styles =
        output("xmllint --nonet --xpath \"count(//*[local-name()='StyleMap'])\" " + path());
    EXPECT_EQ(trim(replaceAll(styles, "\n", "")), "40");
}

TEST_F(KmlReaders, GetBackTheTextsOfHostileEvents) {
    const std::string hostile = "]]></Placemark><script>alert(\"1\")</script>&amp;<!-- -->";
    write({{hostile, "42.7", "13.2", hostile, hostile, hostile},
           {"2016-08-24 01:36:32.000", "42.8", "13.3", "6.0", "8.1", "Forl\xEC"}});
    expectWellFormed();
    const auto value = [&](const std::string& xpath) {
        std::string text = output("xmllint --nonet --xpath \"string(" + xpath + ")\" " + path());
        return std::string(text, 0, text.size() - 1); // but for its own line end
    };
    EXPECT_EQ(value("//*[local-name()='Placemark'][1]/*[local-name()='name']"),
              hostile + " Mg: " + hostile);
    EXPECT_EQ(value("count(//*[local-name()='Placemark'])"), "2");
    EXPECT_EQ(value("count(//*[local-name()='script'])"), "0");
    EXPECT_NE(
        value("//*[local-name()='Placemark'][2]/*[local-name()='description']").find("Forl\u00EC"),
        std::string::npos);
}

TEST_F(KmlReaders, TakeEveryByteInEveryPlace) {
    std::vector<Event> events;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = fmt::format("a{}b", static_cast<char>(byte));
        events.push_back({text, text, text, text, text, text});
    }
    write(events);
    expectWellFormed();
}

TEST_F(KmlReaders, TakePlacesThatAreNone) {
    Texts places = {"", "NaN", "1e999", "abc", std::string(100'000, '9')};
    std::vector<Event> events;
    for (const std::string& place : places)
        events.push_back({"2016-08-24 01:36:32.000", place, place, "1", "1", "INGV"});
    events.push_back({"2016-08-25 01:36:32.000", "42.5", "13.5", "1", "1", "INGV"});
    write(events);
    expectWellFormed();
    const std::string csv = placemarks();
    EXPECT_NE(csv.find("13.5,42.5,"), std::string::npos) << csv;
}

} // namespace
} // namespace tremor
