#include "map/engine/engine_page.h"

#include <QJsonArray>

#include <gtest/gtest.h>

#include <cmath>

namespace tremor {
namespace {

// The generated pages on the engine, driven through their hidden elements.
class EnginePages : public ::testing::Test {
  protected:
    void show(const QString& name) {
        ASSERT_TRUE(page.load(name));
        ASSERT_TRUE(page.waitFor(QStringLiteral("codes.includes('99')")))
            << "the page has not become ready";
    }
    void set(const QString& element, const QString& name, const QString& value) {
        page.evaluate(QStringLiteral("(document.getElementById('%1').%2 = \"%3\")")
                          .arg(element, name, value));
    }
    void fire(const QString& element) {
        page.evaluate(QStringLiteral("(document.getElementById('%1').click(), 0)").arg(element));
    }
    QString attribute(const QString& element, const QString& name) {
        return page.text(QStringLiteral("document.getElementById('%1').%2").arg(element, name));
    }
    // Four events west to east; as the program does, the colours go into DEPTH, too.
    void showEvents(const QString& mode) {
        const QString colours = QStringLiteral("'#FF0000'#33FF00'#0033FF'#FF9900'");
        set(QStringLiteral("markers"), QStringLiteral("PINSMODE"), mode);
        set(QStringLiteral("markers"), QStringLiteral("PINSCALE"), QStringLiteral("3"));
        set(QStringLiteral("markers"), QStringLiteral("LATITUDE"),
            QStringLiteral("'42.5'42.5'42.5'42.5'"));
        set(QStringLiteral("markers"), QStringLiteral("LONGITUDE"),
            QStringLiteral("'11'12'13'14'"));
        set(QStringLiteral("markers"), QStringLiteral("EUTC"),
            QStringLiteral(
                "'2021-01-14 05:45:26.600'2021-01-13 05:45:26.600'2021-01-12 05:45:26.600"
                "'2021-01-11 05:45:26.600'"));
        set(QStringLiteral("markers"), QStringLiteral("MAGNITUDE"),
            QStringLiteral("'3.0'2.0'4.0'0.0'"));
        set(QStringLiteral("markers"), QStringLiteral("DEPTH"),
            mode == QStringLiteral("1") ? colours
                                        : QStringLiteral("'o_34.png'y_28.png'v_58.png'g_14.png'"));
        set(QStringLiteral("markers"), QStringLiteral("EVENTSCOLOR"),
            mode == QStringLiteral("1") ? colours
                                        : QStringLiteral("'o_34.png'y_28.png'v_58.png'g_14.png'"));
        set(QStringLiteral("markers"), QStringLiteral("URLPIN"),
            QStringLiteral("file://" TREMOR_SHARE "/Img/"));
        page.evaluate(QStringLiteral("(document.getElementById('eventi').onclick(), 0)"));
    }
    // Where a position is on the picture.
    QPoint place(double latitude, double longitude) {
        const QString world =
            QStringLiteral("(256 * 2 ** Number(document.getElementById('selection').ZOOM))");
        const QString y =
            QStringLiteral(
                "((lat) => (0.5 - Math.log(Math.tan(Math.PI / 4 + lat * Math.PI / 360)) / "
                "(2 * Math.PI)) * %1)")
                .arg(world);
        const double x = page.number(
            QStringLiteral("400 + (%1 - document.getElementById('selection').CLNG) / 360 * %2")
                .arg(longitude)
                .arg(world));
        const double down = page.number(
            QStringLiteral("300 + %1(%2) - %1(Number(document.getElementById('selection').CLAT))")
                .arg(y)
                .arg(latitude));
        return {qRound(x), qRound(down)};
    }

    EnginePage page;
};

TEST_F(EnginePages, BecomeReadyWithoutAHandAndWithoutAFault) {
    for (const char* name :
         {"TremorLedger.html", "last_event.html", "without_lastepic.html", "workspace.html"}) {
        show(QString::fromLatin1(name));
        EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0) << name;
    }
}

TEST_F(EnginePages, TellTheirViewWithoutBeingAsked) {
    show(QStringLiteral("TremorLedger.html"));
    const double zoom = attribute(QStringLiteral("selection"), QStringLiteral("ZOOM")).toDouble();
    const double west = attribute(QStringLiteral("selection"), QStringLiteral("BLNG")).toDouble();
    const double east = attribute(QStringLiteral("selection"), QStringLiteral("TLNG")).toDouble();
    EXPECT_NEAR(east - west, 800 * 360 / (256 * std::pow(2, zoom)), 1e-6);
    EXPECT_GT(attribute(QStringLiteral("selection"), QStringLiteral("SCALE")).toDouble(), 0);
}

TEST_F(EnginePages, DrawEventsAsCirclesAndRemoveThem) {
    show(QStringLiteral("TremorLedger.html"));
    showEvents(QStringLiteral("1"));
    const QImage picture = page.picture();
    EXPECT_EQ(picture.pixelColor(place(42.5, 11)), QColor(QStringLiteral("#FF0000")));
    EXPECT_EQ(picture.pixelColor(place(42.5, 13)), QColor(QStringLiteral("#0033FF")));
    page.evaluate(QStringLiteral("(document.getElementById('removeAll').onclick(), 0)"));
    EXPECT_NE(page.picture().pixelColor(place(42.5, 11)), QColor(QStringLiteral("#FF0000")));
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EnginePages, DrawEventsAsPins) {
    show(QStringLiteral("TremorLedger.html"));
    showEvents(QStringLiteral("0"));
    page.picture();
    const QColor pin = page.picture().pixelColor(place(42.5, 13) - QPoint(12, 38));
    EXPECT_NEAR(pin.red(), 0x99, 3);
    EXPECT_NEAR(pin.green(), 0x33, 3);
    EXPECT_NEAR(pin.blue(), 0xFF, 3);
}

TEST_F(EnginePages, AClickOnAMarkerIsCode2WithItsTitle) {
    show(QStringLiteral("TremorLedger.html"));
    showEvents(QStringLiteral("1"));
    page.picture();
    const QPoint at = place(42.5, 13);
    page.click(at.x(), at.y());
    EXPECT_EQ(page.text(QStringLiteral("codes.at(-1)")), QStringLiteral("2"));
    EXPECT_EQ(attribute(QStringLiteral("markers"), QStringLiteral("MARSEL")),
              QStringLiteral("2021-01-12 05:45:26.600 Mg: 4.0"));
}

TEST_F(EnginePages, AnEventIsSelectedByItsTime) {
    show(QStringLiteral("TremorLedger.html"));
    showEvents(QStringLiteral("1"));
    set(QStringLiteral("SelezioneMar"), QStringLiteral("ZOOM"), QStringLiteral("9"));
    set(QStringLiteral("SelezioneMar"), QStringLiteral("UTC"),
        QStringLiteral("2021-01-13 05:45:26.600"));
    fire(QStringLiteral("SelezioneMar"));
    EXPECT_EQ(page.text(QStringLiteral("codes.at(-1)")), QStringLiteral("2"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("ZOOM")), QStringLiteral("9"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("CLNG")), QStringLiteral("12"));
}

TEST_F(EnginePages, TheMouseTellsPositionsAndAClickOnTheMapIsCode78) {
    show(QStringLiteral("TremorLedger.html"));
    page.moveTo(300, 200);
    EXPECT_EQ(page.text(QStringLiteral("codes.at(-1)")), QStringLiteral("77"));
    EXPECT_TRUE(page.text(QStringLiteral("document.getElementById('Cursore').value"))
                    .contains(QStringLiteral(" | ")));
    page.click(300, 200);
    EXPECT_EQ(page.text(QStringLiteral("codes.at(-1)")), QStringLiteral("78"));
}

TEST_F(EnginePages, ADragIsCode3WithTheViewAfterIt) {
    show(QStringLiteral("TremorLedger.html"));
    const double before = attribute(QStringLiteral("selection"), QStringLiteral("CLNG")).toDouble();
    page.drag(QPoint(400, 300), QPoint(500, 300));
    EXPECT_EQ(page.text(QStringLiteral("codes.at(-1)")), QStringLiteral("3"));
    EXPECT_LT(attribute(QStringLiteral("selection"), QStringLiteral("CLNG")).toDouble(),
              before - 0.1);
}

TEST_F(EnginePages, LegendAndFaultsAreSwitchedOnAndOff) {
    show(QStringLiteral("TremorLedger.html"));
    const QString overlays =
        QStringLiteral("document.querySelectorAll('.tremor-screen-overlays img').length");
    ASSERT_TRUE(page.waitFor(overlays + QStringLiteral(" === 1"))); // the logo
    set(QStringLiteral("Legenda"), QStringLiteral("BOL"), QStringLiteral("1"));
    fire(QStringLiteral("Legenda"));
    ASSERT_TRUE(page.waitFor(overlays + QStringLiteral(" === 2")));
    set(QStringLiteral("faglie"), QStringLiteral("FLAG"), QStringLiteral("1"));
    fire(QStringLiteral("faglie"));
    ASSERT_TRUE(page.waitFor(QStringLiteral("ctaLayer.getStatus() === 'OK'")));
    set(QStringLiteral("faglie"), QStringLiteral("FLAG"), QStringLiteral("0"));
    fire(QStringLiteral("faglie"));
    set(QStringLiteral("Legenda"), QStringLiteral("BOL"), QStringLiteral("0"));
    fire(QStringLiteral("Legenda"));
    EXPECT_EQ(page.number(overlays), 1);
    EXPECT_EQ(page.evaluate(QStringLiteral("faults")).toArray().size(), 0);
}

TEST_F(EnginePages, StationsComeAndGo) {
    show(QStringLiteral("TremorLedger.html"));
    set(QStringLiteral("stazioni"), QStringLiteral("LATITUDE"), QStringLiteral("'42.6'"));
    set(QStringLiteral("stazioni"), QStringLiteral("LONGITUDE"), QStringLiteral("'13.2'"));
    set(QStringLiteral("stazioni"), QStringLiteral("STATIONCODE"), QStringLiteral("'AQU'"));
    set(QStringLiteral("stazioni"), QStringLiteral("CHECK"), QStringLiteral("1"));
    fire(QStringLiteral("stazioni"));
    const QPoint head = place(42.6, 13.2) - QPoint(6, 22);
    EXPECT_GT(page.picture().pixelColor(head).red(), 200);
    EXPECT_LT(page.picture().pixelColor(head).blue(), 90);
    set(QStringLiteral("stazioni"), QStringLiteral("CHECK"), QStringLiteral("0"));
    fire(QStringLiteral("stazioni"));
    EXPECT_GT(page.picture().pixelColor(head).blue(), 180);
}

TEST_F(EnginePages, TheViewOfAWorkspaceIsShown) {
    show(QStringLiteral("TremorLedger.html"));
    set(QStringLiteral("Workspace"), QStringLiteral("CLAT"), QStringLiteral("38.25"));
    set(QStringLiteral("Workspace"), QStringLiteral("CLNG"), QStringLiteral("15.5"));
    set(QStringLiteral("Workspace"), QStringLiteral("ZOOM"), QStringLiteral("10"));
    fire(QStringLiteral("Workspace"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("CLAT")),
              QStringLiteral("38.25"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("CLNG")),
              QStringLiteral("15.5"));
}

TEST_F(EnginePages, TheLastEventMapEndsOnTheLastMarker) {
    show(QStringLiteral("last_event.html"));
    showEvents(QStringLiteral("1"));
    fire(QStringLiteral("getDataMap"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("CLAT")),
              QStringLiteral("42.5"));
    EXPECT_EQ(attribute(QStringLiteral("selection"), QStringLiteral("CLNG")), QStringLiteral("14"));
}

} // namespace
} // namespace tremor
