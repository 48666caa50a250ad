#include "map/engine/engine_page.h"

#include <QJsonArray>

#include <gtest/gtest.h>

namespace tremor {
namespace {

class EngineKml : public ::testing::Test {
  protected:
    // Loads a document as a layer and gives the status that it ends with.
    QString statusOf(const QByteArray& document,
                     const QString& options = QStringLiteral("{preserveViewport: true}")) {
        page.write(QStringLiteral("layer.kml"), document);
        EXPECT_TRUE(page.loadMap(QStringLiteral("{center: {lat: 40, lng: 12}, zoom: 7}")));
        page.evaluate(
            QStringLiteral("(() => { window.status2 = ''; window.layer = new google.maps.KmlLayer("
                           "'layer.kml', %1); layer.addListener('status_changed', () => {"
                           "status2 = layer.getStatus(); }); layer.setMap(map); return 0; })()")
                .arg(options));
        page.waitFor(QStringLiteral("status2 !== ''"));
        return page.text(QStringLiteral("status2"));
    }

    EnginePage page;
};

const char* const start =
    "<?xml version='1.0' encoding='UTF-8'?><kml xmlns='http://earth.google.com/kml/2.1'><Document>";
const char* const end = "</Document></kml>";

QByteArray document(const char* content) {
    return QByteArray(start) + content + end;
}

TEST_F(EngineKml, DrawsLinesInTheirStyleAndTakesThemOffAgain) {
    EXPECT_EQ(
        statusOf(document(
            "<Style id='f'><LineStyle><color>ff0000ff</color><width>6</width></LineStyle></Style>"
            "<Placemark><styleUrl>#f</styleUrl><LineString><coordinates>11,40 13,40"
            "</coordinates></LineString></Placemark>")),
        QStringLiteral("OK"));
    EXPECT_EQ(page.pixel(400, 300), QColor(255, 0, 0));
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 7);
    page.evaluate(QStringLiteral("(layer.setMap(null), 0)"));
    EXPECT_NE(page.pixel(400, 300), QColor(255, 0, 0));
}

TEST_F(EngineKml, MovesTheViewToItsContentUnlessItIsToStay) {
    EXPECT_EQ(
        statusOf(
            document("<Placemark><Point><coordinates>20,50,0</coordinates></Point></Placemark>"
                     "<Placemark><Point><coordinates>22,52,0</coordinates></Point></Placemark>"),
            QStringLiteral("{}")),
        QStringLiteral("OK"));
    EXPECT_NEAR(page.number(QStringLiteral("map.getCenter().lng()")), 21, 0.01);
}

TEST_F(EngineKml, ShowsNameAndDescriptionOfAClickedPlacemarkAsPlainText) {
    EXPECT_EQ(
        statusOf(document(
            "<Placemark><name>A &lt;b&gt;name&lt;/b&gt;</name><description><![CDATA[<ul><li>UTC: 1"
            "</li><li>Depth: 8 </li></ul><script>faults.push('ran')</script>"
            "<img src='x' onerror='faults.push(1)'>]]></description>"
            "<Point><coordinates>12,40,0</coordinates></Point></Placemark>")),
        QStringLiteral("OK"));
    page.picture();
    page.click(400, 285);
    ASSERT_TRUE(page.waitFor(QStringLiteral("document.querySelector('.tremor-popup') !== null")));
    EXPECT_EQ(
        page.text(QStringLiteral("document.querySelector('.tremor-popup strong').textContent")),
        QStringLiteral("A <b>name</b>"));
    EXPECT_EQ(page.text(QStringLiteral("document.querySelector('.tremor-popup p').textContent")),
              QStringLiteral("UTC: 1\nDepth: 8"));
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EngineKml, LeavesTheMapUsableWhateverTheFileHolds) {
    EXPECT_EQ(statusOf("this is no document"), QStringLiteral("INVALID_DOCUMENT"));
    EXPECT_EQ(statusOf("<kml><Document><Placemark>"), QStringLiteral("INVALID_DOCUMENT"));
    EXPECT_EQ(statusOf(QByteArray("PK\003\004garbage")), QStringLiteral("INVALID_DOCUMENT"));
    EXPECT_EQ(statusOf(QByteArray()), QStringLiteral("DOCUMENT_NOT_FOUND"));
    EXPECT_EQ(statusOf("<html><body>404</body></html>"),
              QStringLiteral("OK")); // XML without placemarks
    page.evaluate(QStringLiteral("(map.setZoom(9), 0)"));
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 9);
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EngineKml, LeavesOutWhatIsNowhere) {
    EXPECT_EQ(
        statusOf(
            document(
                "<Placemark><Point><coordinates></coordinates></Point></Placemark>"
                "<Placemark><Point><coordinates>x,y</coordinates></Point></Placemark>"
                "<Placemark><Point><coordinates>1e308,-1e308</coordinates></Point></Placemark>"
                "<Placemark><LineString><coordinates>5,5</coordinates></LineString></Placemark>"
                "<Placemark><LineString><coordinates>NaN,1 "
                "2,inf</coordinates></LineString></Placemark>"
                "<Placemark><Polygon></Polygon></Placemark><Placemark/>"
                "<GroundOverlay><Icon><href>javascript:faults.push(1)</href></Icon><LatLonBox>"
                "<north>1</north><south>0</south><east>1</east><west>0</west></LatLonBox></"
                "GroundOverlay>"
                "<ScreenOverlay/>"),
            QStringLiteral("{}")),
        QStringLiteral("OK"));
    page.picture();
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EngineKml, AMissingFileIsAStatus) {
    ASSERT_TRUE(page.loadMap(QStringLiteral("{center: {lat: 40, lng: 12}, zoom: 7}")));
    page.evaluate(QStringLiteral(
        "(() => { window.layer = new google.maps.KmlLayer({url: 'none.kml', map: map});"
        "new google.maps.KmlLayer(undefined, null); new google.maps.KmlLayer(); return 0; })()"));
    ASSERT_TRUE(page.waitFor(QStringLiteral("layer.getStatus() !== 'UNKNOWN'")));
    EXPECT_EQ(page.text(QStringLiteral("layer.getStatus()")), QStringLiteral("DOCUMENT_NOT_FOUND"));
}

} // namespace
} // namespace tremor
