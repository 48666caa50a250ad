#include "core/common_text.h"
#include "core/files.h"
#include "map/kml_writer.h"
#include "map/marker_list.h"
#include "support/fakes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

constexpr std::string_view host = "https://maps.example.org";

Texts linesOf(const std::string& text) {
    EXPECT_TRUE(text.ends_with("\r\n"));
    Texts lines;
    std::size_t start = 0;
    for (std::size_t end = text.find("\r\n"); end != std::string::npos;
         start = end + 2, end = text.find("\r\n", start))
        lines.push_back(text.substr(start, end - start));
    return lines;
}

std::string listOf(const Texts& values) {
    MarkerList list;
    for (const std::string& value : values)
        list.Add(value);
    return list.text();
}

// A document of events with the given depths and magnitudes.
std::string document(const Texts& depths, const Texts& magnitudes,
                     const NumberLocale& locale = NumberLocale::point()) {
    const Texts same(depths.size(), "1");
    const std::string rest = listOf(same);
    return kmlDocument({rest, rest, rest, listOf(magnitudes), listOf(depths), rest}, host, locale);
}

// The style of each placemark.
Texts stylesOf(const std::string& kml) {
    Texts styles;
    const std::string start = "\r\n<styleUrl>";
    for (std::size_t at = kml.find(start); at != std::string::npos; at = kml.find(start, at)) {
        at += start.size();
        styles.push_back(kml.substr(at, kml.find('<', at) - at));
    }
    return styles;
}

// A document with one event whose every value is the given one.
std::string hostileDocument(const std::string& value) {
    const std::string list = listOf({value});
    return kmlDocument({list, list, list, list, list, list}, host, NumberLocale::point());
}

TEST(KmlDocument, HasFortyStylesAndAnEmptyFolderWithoutEvents) {
    Texts expected = {"<?xml version='1.0' encoding='UTF-8'?>",
                      "<kml xmlns='http://earth.google.com/kml/2.1'>", "<Document>",
                      "<name>ORVA, TremorLedger</name>", "<open>1</open>"};
    int styles = 0;
    for (const char letter : {'b', 'g', 'o', 'v', 'y'})
        for (const int size : {14, 18, 23, 28, 34, 44, 50, 58}) {
            const std::string name = fmt::format("{}_{}", letter, size);
            for (const std::string& line :
                 {"<StyleMap id='" + name + "'>",
                  "<Pair><key>normal</key><styleUrl>#" + name + "Act</styleUrl></Pair>",
                  "<Pair><key>highlight</key><styleUrl>#" + name + "Act</styleUrl></Pair>",
                  std::string("</StyleMap>"), "<Style id='" + name + "Act'>",
                  std::string("<IconStyle>"),
                  "<Icon><href>https://maps.example.org/TremorLedger/Img/" + name +
                      ".png</href></Icon>",
                  std::string("</IconStyle>"),
                  std::string("<LabelStyle><scale>1</scale></LabelStyle>"),
                  std::string("</Style>")})
                expected.push_back(line);
            ++styles;
        }
    EXPECT_EQ(styles, 40);
    for (const char* line : {"<Folder>", "</Folder>", "</Document>", "</kml>"})
        expected.emplace_back(line);
    EXPECT_EQ(linesOf(kmlDocument({"'", "'", "'", "'", "'", "'"}, host, NumberLocale::point())),
              expected);
}

TEST(KmlDocument, HasAPlacemarkForEachEvent) {
    const Texts lines =
        linesOf(kmlDocument({"'2016-08-24 01:36:32.000'2016-08-24 02:33:28.890'", "'42.7'42.79'",
                             "'13.23'13.15'", "'6.0'5.4'", "'8.1'25'", "'INGV'EMSC'"},
                            host, NumberLocale::point()));
    const auto folder = std::find(lines.begin(), lines.end(), "<Folder>");
    EXPECT_EQ(Texts(folder, lines.end()),
              (Texts{"<Folder>",
                     "<Placemark>",
                     "<name>2016-08-24 01:36:32.000 Mg: 6.0</name>",
                     "<styleUrl>#o_44</styleUrl>",
                     "<description><![CDATA[",
                     "<ul><li>UTC: 2016-08-24 01:36:32.000</li>",
                     "<li>Depth: 8.1</li>",
                     "<li>Magnitude: 6.0</li>",
                     "<li>Source: INGV</li>",
                     "</ul>",
                     "]]>",
                     "</description>",
                     "<Style><IconStyle><scale>1</scale></IconStyle></Style>",
                     "<Point>",
                     "<coordinates>13.23,42.7, 0</coordinates>",
                     "</Point>",
                     "</Placemark>",
                     "<Placemark>",
                     "<name>2016-08-24 02:33:28.890 Mg: 5.4</name>",
                     "<styleUrl>#g_44</styleUrl>",
                     "<description><![CDATA[",
                     "<ul><li>UTC: 2016-08-24 02:33:28.890</li>",
                     "<li>Depth: 25</li>",
                     "<li>Magnitude: 5.4</li>",
                     "<li>Source: EMSC</li>",
                     "</ul>",
                     "]]>",
                     "</description>",
                     "<Style><IconStyle><scale>1</scale></IconStyle></Style>",
                     "<Point>",
                     "<coordinates>13.15,42.79, 0</coordinates>",
                     "</Point>",
                     "</Placemark>",
                     "</Folder>",
                     "</Document>",
                     "</kml>"}));
}

class KmlStyles : public ::testing::TestWithParam<NumberLocale> {};

INSTANTIATE_TEST_SUITE_P(PointAndComma, KmlStyles,
                         ::testing::Values(NumberLocale::point(), NumberLocale::comma()));

TEST_P(KmlStyles, FollowTheDepth) {
    const Texts depths = {"0", "10", "10.1", "20", "20.1", "60", "60.1", "300", "300.1", "800"};
    EXPECT_EQ(stylesOf(document(depths, Texts(depths.size(), "2.5"), GetParam())),
              (Texts{"#o_23", "#o_23", "#y_23", "#y_23", "#g_23", "#g_23", "#b_23", "#b_23",
                     "#v_23", "#v_23"}));
}

TEST_P(KmlStyles, FollowTheMagnitude) {
    const Texts magnitudes = {"0",   "1", "1.1", "2", "2.1", "3", "3.1", "4",
                              "4.1", "5", "5.1", "6", "6.1", "7", "7.1", "10"};
    EXPECT_EQ(stylesOf(document(Texts(magnitudes.size(), "5"), magnitudes, GetParam())),
              (Texts{"#o_14", "#o_14", "#o_18", "#o_18", "#o_23", "#o_23", "#o_28", "#o_28",
                     "#o_34", "#o_34", "#o_44", "#o_44", "#o_50", "#o_50", "#o_58", "#o_58"}));
}

TEST(KmlDocument, RepeatsTheStyleOfThePlacemarkBeforeOutsideTheClasses) {
    EXPECT_EQ(stylesOf(document({"15", "900", "-1", "15", "30"}, {"3", "1", "1", "10.1", "-0.5"})),
              (Texts{"#y_23", "#y_23", "#y_23", "#y_23", "#y_23"}));
}

TEST(KmlDocument, HasAnEmptyStyleWhenTheFirstEventIsOutsideTheClasses) {
    EXPECT_EQ(stylesOf(document({"900", "5"}, {"3", "3"})), (Texts{"", "#o_23"}));
}

TEST(KmlDocument, TakesGarbageForZeroWhenItChoosesAStyle) {
    EXPECT_EQ(stylesOf(document({"", "NaN", "1e999"}, {"x", "", "<"})),
              (Texts{"#o_14", "#o_14", "#o_14"}));
}

TEST(KmlDocument, EscapesMarkup) {
    const std::string kml = hostileDocument("<b>&\"]]>");
    EXPECT_NE(kml.find("<name>&lt;b&gt;&amp;\"]]&gt; Mg: &lt;b&gt;&amp;\"]]&gt;</name>"),
              std::string::npos);
    EXPECT_NE(kml.find("<li>Source: &lt;b&gt;&amp;\"]]&gt;</li>"), std::string::npos);
    EXPECT_NE(kml.find("<coordinates>&lt;b&gt;"), std::string::npos);
    const std::size_t end = kml.find("]]>");
    EXPECT_EQ(kml.substr(end, 20), "]]>\r\n</description>\r");
    EXPECT_EQ(kml.find("]]>", end + 1), std::string::npos);
}

TEST(KmlDocument, EscapesTheHost) {
    const std::string kml =
        kmlDocument({"'", "'", "'", "'", "'", "'"}, "https://a&b<c", NumberLocale::point());
    EXPECT_NE(kml.find("<href>https://a&amp;b&lt;c/TremorLedger/Img/b_14.png"), std::string::npos);
}

TEST(KmlDocument, LeavesOutWhatXmlForbids) {
    const std::string kml = hostileDocument(std::string("a\0b\x01\x1F\t\x7F", 7) +
                                            "\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD");
    EXPECT_NE(kml.find("<li>Source: ab\t\x7F\xEF\xBF\xBD</li>"), std::string::npos);
}

TEST(KmlDocument, TakesBytesThatAreNoUtf8ForWindows1252) {
    EXPECT_NE(hostileDocument("Forl\xEC \x80").find("<li>Source: Forl\u00EC \u20AC</li>"),
              std::string::npos);
    EXPECT_NE(hostileDocument("Forl\u00EC").find("<li>Source: Forl\u00EC</li>"), std::string::npos);
}

TEST(KmlDocument, RaisesAnErrorForListsOfUnequalLength) {
    try {
        kmlDocument({"'a'b'", "'1'", "'1'2'", "'1'2'", "'1'2'", "'1'2'"}, host,
                    NumberLocale::point());
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), ErrorNumber::SubscriptOutOfRange);
    }
}

TEST(KmlDocument, TakesTextsThatAreNoLists) {
    for (const char* text : {"", "'", "abc"}) {
        const std::string kml =
            kmlDocument({text, text, text, text, text, text}, host, NumberLocale::point());
        EXPECT_EQ(kml.find("<Placemark>"), std::string::npos) << text;
    }
}

class KmlWriterTest : public ::testing::Test {
  protected:
    void write(const std::string& utc = "'a'") {
        writer.KmlGenerator(utc, "'1'", "'2'", "'3'", "'#FFFFFF'", "'4'", "'INGV'");
    }
    std::string path() const { return folder.file("tremorledger.kml"); }

    testing::TemporaryFolder folder;
    testing::ErrorHarness harness;
    KmlWriter writer{folder.path(), std::string(host), NumberLocale::point(), harness.errors};
};

TEST_F(KmlWriterTest, WritesTheDocumentAndOneMoreLineEnd) {
    write();
    EXPECT_EQ(readWholeFile(path()), kmlDocument({"'a'", "'1'", "'2'", "'3'", "'4'", "'INGV'"},
                                                 host, NumberLocale::point()) +
                                         "\r\n");
}

TEST_F(KmlWriterTest, ReplacesTheFileEachTime) {
    write();
    write("'");
    EXPECT_EQ(readWholeFile(path()).find("<Placemark>"), std::string::npos);
}

// Whoever reads while the file is replaced keeps the whole old one.
TEST_F(KmlWriterTest, PutsANewFileInPlaceOfTheOldOne) {
    write();
    struct stat before {};
    ASSERT_EQ(::stat(path().c_str(), &before), 0);
    const std::string kept = folder.file("kept");
    ASSERT_EQ(::link(path().c_str(), kept.c_str()), 0);
    write("'");
    EXPECT_NE(readWholeFile(kept).find("<Placemark>"), std::string::npos);
}

TEST_F(KmlWriterTest, LeavesTheOldFileWhenItCannotBeBuilt) {
    write();
    const std::string before = readWholeFile(path());
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    write("'a'b'c'");
    EXPECT_EQ(readWholeFile(path()), before);
}

TEST_F(KmlWriterTest, ReportsAFolderThatIsNotThere) {
    const KmlWriter nowhere(folder.file("none"), "", NumberLocale::point(), harness.errors);
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    nowhere.KmlGenerator("'", "'", "'", "'", "'", "'", "'");
    EXPECT_FALSE(PathExists(folder.file("none")));
}

} // namespace
} // namespace tremor
