#include "map/engine/engine_page.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <cmath>

namespace tremor {
namespace {

const QString italy =
    QStringLiteral("{center: new google.maps.LatLng(42, 12), zoom: 6, zoomControl: false}");

// The view's corner is a whole pixel of the world; here in degrees at zoom 6.
const double halfPixel = 180.0 / 16384;

class EngineMap : public ::testing::Test {
  protected:
    void show(const QString& mapOptions = italy, const QString& options = {}) {
        ASSERT_TRUE(page.loadMap(mapOptions, options));
        ASSERT_TRUE(page.waitFor(QStringLiteral("rests >= 2")));
    }
    void run(const QString& statements) {
        page.evaluate(QStringLiteral("(() => { %1; return 0; })()").arg(statements));
    }

    EnginePage page;
};

bool isSea(const QColor& colour) {
    return colour.blue() > colour.red() + 15;
}

TEST_F(EngineMap, ShowsWhereItIsAskedToAtTheScaleOfTheZoom) {
    show();
    EXPECT_EQ(page.number(QStringLiteral("map.getCenter().lat()")), 42);
    EXPECT_EQ(page.number(QStringLiteral("map.getCenter().lng()")), 12);
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 6);
    // 800 pixels of a world that is 256 * 2^6 pixels wide.
    EXPECT_NEAR(page.number(QStringLiteral("map.getBounds().getSouthWest().lng()")),
                12 - 400 * 360.0 / 16384, halfPixel);
    EXPECT_NEAR(page.number(QStringLiteral("map.getBounds().getNorthEast().lng()")),
                12 + 400 * 360.0 / 16384, halfPixel);
}

TEST_F(EngineMap, DrawsLandAndSea) {
    show();
    // The Tyrrhenian Sea at 40 N 12 E lies about 124 pixels south of the middle, Umbria in it.
    EXPECT_TRUE(isSea(page.pixel(400, 424)));
    const QColor land = page.pixel(400, 250);
    EXPECT_FALSE(isSea(land));
    EXPECT_GT(land.lightness(), 220);
    EXPECT_EQ(page.text(QStringLiteral(
                  "document.querySelector('.leaflet-control-attribution').textContent")),
              QStringLiteral("Map data: Natural Earth"));
    EXPECT_TRUE(page.text(QStringLiteral(
                              "document.querySelector('.leaflet-control-scale-line').textContent"))
                    .endsWith(QStringLiteral("km")));
    EXPECT_TRUE(page.text(QStringLiteral(
                              "[...document.querySelectorAll('.tremor-meridian')].map((label) => "
                              "label.textContent).join()"))
                    .contains(QStringLiteral("10° E")));
    EXPECT_TRUE(page.text(QStringLiteral(
                              "[...document.querySelectorAll('.tremor-parallel')].map((label) => "
                              "label.textContent).join()"))
                    .contains(QStringLiteral("40° N")));
}

TEST_F(EngineMap, CarriesOutChangesOfTheViewAtOnceAndTellsThem) {
    show();
    run(QStringLiteral(
        "window.heard = []; for (const name of ['zoom_changed', 'center_changed', 'bounds_changed',"
        "'idle', 'tilesloaded']) map.addListener(name, () => heard.push(name + map.getZoom()));"
        "map.setCenter(new google.maps.LatLng(38, 15)); map.setZoom(8);"
        "window.atOnce = [map.getZoom(), map.getBounds().getSouthWest().lng()]; rests = 0"));
    EXPECT_EQ(page.number(QStringLiteral("atOnce[0]")), 8);
    EXPECT_NEAR(page.number(QStringLiteral("atOnce[1]")), 15 - 400 * 360.0 / 65536, halfPixel);
    ASSERT_TRUE(page.waitFor(QStringLiteral("rests >= 1")));
    EXPECT_EQ(
        page.number(QStringLiteral("heard.filter((name) => name === 'zoom_changed8').length")), 1);
    EXPECT_EQ(page.text(QStringLiteral("heard.slice(-2).join()")),
              QStringLiteral("idle8,tilesloaded8"));
    EXPECT_TRUE(page.evaluate(QStringLiteral("heard.includes('bounds_changed8')")).toBool());
}

TEST_F(EngineMap, ZoomsByWholeStepsWithWheelAndKeys) {
    show();
    page.turnWheel(400, 300, 1);
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 7);
    page.click(600, 500);
    page.pressKey(Qt::Key_Plus);
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 8);
    page.pressKey(Qt::Key_Minus);
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 7);
    const double before = page.number(QStringLiteral("map.getCenter().lng()"));
    page.pressKey(Qt::Key_Right);
    EXPECT_GT(page.number(QStringLiteral("map.getCenter().lng()")), before);
}

TEST_F(EngineMap, FollowsADragAndReportsItsEndWhereItStays) {
    show();
    run(QStringLiteral("window.heard = []; for (const name of ['dragstart', 'drag', 'dragend'])"
                       "map.addListener(name, () => heard.push([name, map.getCenter().lng()]))"));
    page.drag(QPoint(400, 300), QPoint(500, 300));
    EXPECT_EQ(page.text(QStringLiteral("heard[0][0]")), QStringLiteral("dragstart"));
    EXPECT_EQ(page.text(QStringLiteral("heard.at(-1)[0]")), QStringLiteral("dragend"));
    EXPECT_EQ(page.number(QStringLiteral("heard.at(-1)[1] - map.getCenter().lng()")), 0);
    EXPECT_NEAR(page.number(QStringLiteral("map.getCenter().lng()")), 12 - 100 * 360.0 / 16384,
                0.1);
}

TEST_F(EngineMap, TellsThePositionUnderThePointer) {
    show();
    run(QStringLiteral("window.moved = null; window.clicked = null;"
                       "map.addListener('mousemove', (point) => { moved = point.latLng.lng(); });"
                       "map.addListener('click', (point) => { clicked = point.latLng.lat(); })"));
    page.click(500, 300);
    EXPECT_NEAR(page.number(QStringLiteral("moved")), 12 + 100 * 360.0 / 16384, halfPixel);
    EXPECT_NEAR(page.number(QStringLiteral("clicked")), 42, halfPixel);
}

TEST_F(EngineMap, GivesAViewAcross180AsWestAboveEast) {
    show(QStringLiteral("{center: {lat: -15, lng: 179}, zoom: 5}"));
    EXPECT_GT(page.number(QStringLiteral("map.getBounds().getSouthWest().lng()")), 160);
    EXPECT_LT(page.number(QStringLiteral("map.getBounds().getNorthEast().lng()")), -160);
    run(QStringLiteral("map.setZoom(0)"));
    EXPECT_EQ(page.number(QStringLiteral("map.getBounds().getSouthWest().lng()")), -180);
    EXPECT_EQ(page.number(QStringLiteral("map.getBounds().getNorthEast().lng()")), 180);
}

TEST_F(EngineMap, KeepsItsViewWhenGivenNonsense) {
    show();
    run(QStringLiteral(
        "for (const nonsense of [undefined, null, NaN, '', 'x', {}, [], -Infinity, () => {}]) {"
        "map.setCenter(nonsense); map.setZoom(nonsense); map.fitBounds(nonsense); "
        "map.panTo(nonsense);"
        "map.setOptions(nonsense); map.setCenter(new google.maps.LatLng(nonsense, nonsense)); }"));
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 6);
    EXPECT_EQ(page.number(QStringLiteral("map.getCenter().lat()")), 42);
    run(QStringLiteral("map.setZoom(99)"));
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 20);
    run(QStringLiteral("map.setCenter(new google.maps.LatLng(1e9, 1e9)); map.setZoom(-3)"));
    EXPECT_EQ(page.number(QStringLiteral("map.getZoom()")), 0);
    EXPECT_LT(page.number(QStringLiteral("map.getCenter().lat()")), 85.1);
    run(QStringLiteral(
        "new google.maps.Map(null, null); new google.maps.Map(document.createElement('div'),"
        "{center: 'x', zoom: 'y'}); new google.maps.Polyline(null);"
        "new google.maps.Polyline({map: map, path: [{lat: 'x'}, new google.maps.LatLng(1, 2), "
        "null]})"));
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EngineMap, NamesTheSourceOfRasterTilesAsPlainText) {
    show(italy,
         QStringLiteral("window.TREMOR_MAP_OPTIONS = {tileUrl: 'no-such-folder/{z}/{x}/{y}.png', "
                        "tileAttribution: 'Tiles <b>of ours</b>'};"));
    EXPECT_TRUE(page.text(QStringLiteral(
                              "document.querySelector('.leaflet-control-attribution').textContent"))
                    .contains(QStringLiteral("Tiles <b>of ours</b>")));
    EXPECT_TRUE(isSea(page.pixel(400, 424))); // the offline map shows through missing tiles
}

TEST_F(EngineMap, FollowsTheSizeOfItsView) {
    show();
    run(QStringLiteral("rests = 0"));
    page.view().resize(1000, 500);
    ASSERT_TRUE(page.waitFor(
        QStringLiteral("rests >= 1 && document.documentElement.clientWidth === 1000")));
    EXPECT_NEAR(page.number(QStringLiteral("map.getBounds().getNorthEast().lng() - "
                                           "map.getBounds().getSouthWest().lng()")),
                1000 * 360.0 / 16384, 0.05);
    EXPECT_NEAR(page.number(QStringLiteral("map.getCenter().lng()")), 12, 0.05);
}

} // namespace
} // namespace tremor
