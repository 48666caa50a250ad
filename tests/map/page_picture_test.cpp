#include "map/map_window_fixture.h"
#include "map/picture_file.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QHideEvent>
#include <QtGui/QImage>
#include <QtTest/qtestspontaneevent.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace tremor {
namespace {

using testing::MapWindowFixture;

// Pictures of pages, from the browser engine.
class PagePicture : public MapWindowFixture {
  protected:
    static QRgb at(const Picture& picture, int x, int y) {
        const std::size_t place =
            3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                 static_cast<std::size_t>(x));
        return qRgb(picture.rgb.at(place), picture.rgb.at(place + 1), picture.rgb.at(place + 2));
    }
    static bool near(QRgb one, QRgb other) {
        return std::abs(qRed(one) - qRed(other)) <= 3 &&
               std::abs(qGreen(one) - qGreen(other)) <= 3 &&
               std::abs(qBlue(one) - qBlue(other)) <= 3;
    }
    // The engine hands over what it has painted a little later.
    bool waitForColour(int x, int y, QRgb colour) {
        return waitFor([&] {
            const std::optional<Picture> picture = browser().picture();
            return picture && x < picture->width && y < picture->height &&
                   at(*picture, x, y) == colour;
        });
    }
    std::string fields() const {
        return "<body style='margin:0;background:#d3e2ec'>"
               "<div style='position:absolute;left:100px;top:50px;width:60px;height:40px;"
               "background:#ff0000'></div>"
               "<script>window.google = {maps: {Map: function() {}}};</script>";
    }
};

TEST_F(PagePicture, HasTheSizeOfTheControlAndThePagesColoursInTheirPlaces) {
    ASSERT_TRUE(showPage(fields()));
    ASSERT_TRUE(waitForColour(130, 70, 0xFFFF0000));
    const std::optional<Picture> picture = browser().picture();
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(picture->width, browser().view().width());
    EXPECT_EQ(picture->height, browser().view().height());
    EXPECT_EQ(picture->rgb.size(), std::size_t{3} * 800 * 600);
    EXPECT_EQ(at(*picture, 100, 50), 0xFFFF0000);
    EXPECT_EQ(at(*picture, 159, 89), 0xFFFF0000);
    for (const auto& [x, y] : {std::pair(99, 50), std::pair(100, 49), std::pair(160, 89),
                               std::pair(0, 0), std::pair(799, 599)})
        EXPECT_EQ(at(*picture, x, y), 0xFFD3E2EC) << x << " " << y;
}

TEST_F(PagePicture, AMapIsSavedWithItsMarkersInTheirColours) {
    ASSERT_TRUE(showMainPage());
    QtWebBrowser& page = browser();
    // One circle in the middle of the map.
    page.setAttribute("markers", "latitude", "'42.5'");
    page.setAttribute("markers", "Longitude", "'13.25'");
    page.setAttribute("markers", "EUTC", "'2021-01-14 05:45:26.600'");
    page.setAttribute("markers", "DEPTH", "'#33ff00'");
    page.setAttribute("markers", "Magnitude", "'5'");
    page.setAttribute("markers", "EVENTSCOLOR", "'g.png'");
    page.setAttribute("markers", "PinsMode", "1");
    page.setAttribute("markers", "PINSCALE", "3");
    ASSERT_EQ(page.fire("eventi", Fire::Onclick), PageStatus::Done);
    const QPoint middle(page.view().width() / 2, page.view().height() / 2);
    ASSERT_TRUE(waitForColour(middle.x(), middle.y(), 0xFF33FF00));
    const std::optional<Picture> picture = page.picture();
    ASSERT_TRUE(picture.has_value());
    GDIPlusDCToFile(*picture, folder.file("map.jpg"), 2);
    const QImage saved(QString::fromStdString(folder.file("map.jpg")));
    ASSERT_EQ(saved.size(), page.view().size());
    EXPECT_TRUE(near(saved.pixel(middle), 0xFF33FF00)) << std::hex << saved.pixel(middle);
    long surface = 0; // land and sea
    for (int y = 0; y < saved.height(); ++y)
        for (int x = 0; x < saved.width(); ++x)
            surface += near(saved.pixel(x, y), 0xFFD3E2EC) || near(saved.pixel(x, y), 0xFFF6F2E9);
    EXPECT_GT(surface, saved.width() * saved.height() / 2);
}

TEST_F(PagePicture, IsThereBehindOtherWindowsAndOffTheScreen) {
    ASSERT_TRUE(showPage(fields()));
    ASSERT_TRUE(waitForColour(130, 70, 0xFFFF0000));
    frame().hide();
    EXPECT_FALSE(browser().picture().has_value());
    frame().setAttribute(Qt::WA_DontShowOnScreen);
    frame().show();
    ASSERT_TRUE(waitForColour(130, 70, 0xFFFF0000));
    ASSERT_TRUE(showPage("<body style='background:#00ff00'>"
                         "<script>window.google={maps:{Map(){}}}</script>"));
    EXPECT_TRUE(waitForColour(130, 70, 0xFF00FF00));
    frame().move(-2000, -2000);
    EXPECT_TRUE(waitForColour(130, 70, 0xFF00FF00));
}

TEST_F(PagePicture, FollowsThePageInAMinimisedWindow) {
    ASSERT_TRUE(showPage(fields()));
    ASSERT_TRUE(waitForColour(130, 70, 0xFFFF0000));
    QHideEvent minimised;
    QSpontaneKeyEvent::setSpontaneous(&minimised); // as the window system sends it
    QCoreApplication::instance()->notify(&browser().view(), &minimised);
    evaluate(QStringLiteral("(document.body.style.background = '#00ff00', 0)"));
    EXPECT_TRUE(waitForColour(10, 10, 0xFF00FF00));
}

TEST_F(PagePicture, FollowsTheSizeOfTheControl) {
    ASSERT_TRUE(showPage(fields()));
    frame().resize(933, 667);
    ASSERT_TRUE(waitForColour(930, 660, 0xFFD3E2EC));
    const std::optional<Picture> picture = browser().picture();
    EXPECT_EQ(picture->width, 933);
    EXPECT_EQ(picture->height, 667);
}

TEST_F(PagePicture, NoPageNoPicture) {
    EXPECT_FALSE(browser().picture().has_value());
    ASSERT_TRUE(showPage(fields()));
    ASSERT_TRUE(waitForColour(130, 70, 0xFFFF0000));
    browser().Navigate("about:blank");
    EXPECT_FALSE(browser().picture().has_value());
}

} // namespace
} // namespace tremor
