#include "core/hosts.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace tremor {
namespace {

TEST(ParseHosts, AnEmptyTextGivesTheDefaults) {
    const Hosts hosts = parseHosts("");
    EXPECT_EQ(hosts.Ingv, "https://webservices.ingv.it");
    EXPECT_EQ(hosts.StaticMap, "embedded");
    EXPECT_EQ(hosts.MapsEngine, "embedded");
    EXPECT_EQ(hosts.TileUrl, "");
    EXPECT_EQ(hosts.UnattendedAnswerSeconds, 60);
}

TEST(ParseHosts, ReadsEveryKey) {
    const Hosts hosts = parseHosts("[HOSTS]\r\n"
                                   "InternetProbe=http://a:1\r\n"
                                   "Ingv=http://b:2\r\n"
                                   "Usgs=http://c:3\r\n"
                                   "Emsc=http://d:4\r\n"
                                   "Iside=http://e:5\r\n"
                                   "Telegram=http://f:6\r\n"
                                   "TelegramHelp=http://g:7/bots\r\n"
                                   "GeoNames=http://h:8\r\n"
                                   "StaticMap=http://i:9\r\n"
                                   "MapsApi=http://j:10\r\n"
                                   "MapsEngine=online\r\n"
                                   "TileUrl=http://k:11/{z}/{x}/{y}.png\r\n"
                                   "TileAttribution=(c) the map's makers\r\n"
                                   "WebHost=http://l:12\r\n"
                                   "JsonProxy=http://m:13\r\n"
                                   "CaFile=/etc/ssl/office.pem\r\n"
                                   "UnattendedAnswerSeconds=5\r\n");
    EXPECT_EQ(hosts.InternetProbe, "http://a:1");
    EXPECT_EQ(hosts.Ingv, "http://b:2");
    EXPECT_EQ(hosts.Usgs, "http://c:3");
    EXPECT_EQ(hosts.Emsc, "http://d:4");
    EXPECT_EQ(hosts.Iside, "http://e:5");
    EXPECT_EQ(hosts.Telegram, "http://f:6");
    EXPECT_EQ(hosts.TelegramHelp, "http://g:7/bots");
    EXPECT_EQ(hosts.GeoNames, "http://h:8");
    EXPECT_EQ(hosts.StaticMap, "http://i:9");
    EXPECT_EQ(hosts.MapsApi, "http://j:10");
    EXPECT_EQ(hosts.MapsEngine, "online");
    EXPECT_EQ(hosts.TileUrl, "http://k:11/{z}/{x}/{y}.png");
    EXPECT_EQ(hosts.TileAttribution, "(c) the map's makers");
    EXPECT_EQ(hosts.WebHost, "http://l:12");
    EXPECT_EQ(hosts.JsonProxy, "http://m:13");
    EXPECT_EQ(hosts.CaFile, "/etc/ssl/office.pem");
    EXPECT_EQ(hosts.UnattendedAnswerSeconds, 5);
}

TEST(ParseHosts, CutsBlanksAndAClosingSlash) {
    const Hosts hosts = parseHosts("  [HOSTS]  \n  Usgs =  https://mirror.example/ \n");
    EXPECT_EQ(hosts.Usgs, "https://mirror.example");
}

TEST(ParseHosts, KeepsEqualsSignsInsideAValue) {
    EXPECT_EQ(parseHosts("[HOSTS]\nTileUrl=http://t/{z}?key=abc=").TileUrl,
              "http://t/{z}?key=abc=");
}

TEST(ParseHosts, PassesOverKeysOutsideItsSection) {
    const Hosts hosts = parseHosts("Ingv=http://before\n[OTHER]\nIngv=http://other\n"
                                   "[HOSTS]\nUsgs=http://u\n[hosts]\nEmsc=http://e\n");
    EXPECT_EQ(hosts.Ingv, Hosts{}.Ingv);
    EXPECT_EQ(hosts.Usgs, "http://u");
    EXPECT_EQ(hosts.Emsc, Hosts{}.Emsc);
}

TEST(ParseHosts, PassesOverCommentsUnknownKeysAndLinesWithoutAnEqualsSign) {
    const Hosts hosts = parseHosts("[HOSTS]\n; Ingv=http://c\n#Ingv=http://d\nIngv\nUnknown=1\n"
                                   "ingv=http://case\n=http://nokey\n\nUsgs=http://u");
    EXPECT_EQ(hosts.Ingv, Hosts{}.Ingv);
    EXPECT_EQ(hosts.Usgs, "http://u");
}

TEST(ParseHosts, AnEmptyValueKeepsTheDefault) {
    const Hosts hosts = parseHosts("[HOSTS]\nIngv=\nUsgs=   \nEmsc=/\n");
    EXPECT_EQ(hosts.Ingv, Hosts{}.Ingv);
    EXPECT_EQ(hosts.Usgs, Hosts{}.Usgs);
    EXPECT_EQ(hosts.Emsc, Hosts{}.Emsc);
}

TEST(ParseHosts, TheLaterLineWins) {
    EXPECT_EQ(parseHosts("[HOSTS]\nIngv=http://a\nIngv=http://b\n").Ingv, "http://b");
}

TEST(ParseHosts, PassesOverBadNumbers) {
    for (const std::string bad : {"", "x", "5x", "-1", "1.5", "99999999999999999999", "86401"})
        EXPECT_EQ(parseHosts("[HOSTS]\nUnattendedAnswerSeconds=" + bad).UnattendedAnswerSeconds, 60)
            << bad;
    EXPECT_EQ(parseHosts("[HOSTS]\nUnattendedAnswerSeconds=0").UnattendedAnswerSeconds, 0);
    EXPECT_EQ(parseHosts("[HOSTS]\nUnattendedAnswerSeconds=86400").UnattendedAnswerSeconds, 86400);
}

TEST(ParseHosts, ReadsAFileWithAByteOrderMark) {
    EXPECT_EQ(parseHosts("\xEF\xBB\xBF[HOSTS]\r\nIngv=http://a\r\n").Ingv, "http://a");
}

TEST(ParseHosts, SurvivesBinaryGarbageAndLongLines) {
    std::string garbage("[HOSTS]\n\0\xFF=\0[=]\n", 16);
    garbage += std::string(10'000'000, '=') + "\nUsgs=http://u\n";
    EXPECT_EQ(parseHosts(garbage).Usgs, "http://u");
}

TEST(ReadHosts, ReadsAFile) {
    const testing::TemporaryFolder folder;
    std::ofstream(folder.file("hosts.ini")) << "[HOSTS]\nIngv=http://127.0.0.1:8080\n";
    EXPECT_EQ(readHosts(folder.file("hosts.ini")).Ingv, "http://127.0.0.1:8080");
}

TEST(ReadHosts, GivesTheDefaultsForAMissingFileAndForAFolder) {
    const testing::TemporaryFolder folder;
    EXPECT_EQ(readHosts(folder.file("hosts.ini")).Ingv, Hosts{}.Ingv);
    EXPECT_EQ(readHosts(folder.path()).Ingv, Hosts{}.Ingv);
}

TEST(ReadHosts, GivesTheDefaultsForAFileThatIsFarTooLarge) {
    const testing::TemporaryFolder folder;
    std::ofstream(folder.file("hosts.ini")) << "[HOSTS]\nIngv=http://a\n"
                                            << std::string(2'000'000, 'x');
    EXPECT_EQ(readHosts(folder.file("hosts.ini")).Ingv, Hosts{}.Ingv);
}

} // namespace
} // namespace tremor
