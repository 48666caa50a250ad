#include "map/map_site.h"
#include "map/map_window_fixture.h"

#include <QtGui/QDesktopServices>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QTest>

#include <filesystem>

namespace tremor {
namespace {

using testing::MapWindowFixture;
using testing::Texts;

const std::string mapsDouble = "<script>window.google = {maps: {Map: function() {}}};</script>";

// Answers every request with the same bytes and keeps the paths asked for.
class OneAnswerServer {
  public:
    explicit OneAnswerServer(QByteArray answer) : answer_(std::move(answer)) {
        EXPECT_TRUE(server_.listen(QHostAddress::LocalHost));
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
    }

    std::string address() const {
        return "http://127.0.0.1:" + std::to_string(server_.serverPort());
    }
    Texts paths;

  private:
    void accept() {
        QTcpSocket* socket = server_.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            const QByteArray line = socket->readAll().split('\r').first();
            if (!line.startsWith("GET "))
                return;
            paths.push_back(line.split(' ').at(1).toStdString());
            if (answer_.isEmpty())
                return; // never answers
            socket->write(answer_);
            socket->disconnectFromHost();
        });
    }

    QByteArray answer_;
    QTcpServer server_;
};

QByteArray response(const QByteArray& status, const QByteArray& body) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

class Site : public MapWindowFixture {
  protected:
    void copyOverlays() {
        for (const char* name : {"LegendZ.kmz.txt", "OrvaLogo.kmz.txt", "prova.kmz.txt"})
            std::filesystem::copy_file(std::string(TREMOR_SHARE) + "/Img/" + name,
                                       folder.file(std::string("Img/") + name));
    }
    // What a request of the page gives: its bytes, or "failed".
    std::string request(const std::string& address) {
        evaluate(QStringLiteral("(() => { window.got = null; const request = new XMLHttpRequest();"
                                "request.onload = () => { got = 'is ' + request.responseText; };"
                                "request.onerror = () => { got = 'failed'; };"
                                "request.open('GET', %1); request.send(); return 0; })()")
                     .arg(quoted(address)));
        EXPECT_TRUE(waitForPage(QStringLiteral("got !== null"))) << address;
        return text(QStringLiteral("got"));
    }
    // What becomes of a picture: its width, or "failed".
    std::string picture(const std::string& address) {
        evaluate(QStringLiteral("(() => { window.got = null; const image = new Image();"
                                "image.onload = () => { got = String(image.naturalWidth); };"
                                "image.onerror = () => { got = 'failed'; };"
                                "image.src = %1; return 0; })()")
                     .arg(quoted(address)));
        EXPECT_TRUE(waitForPage(QStringLiteral("got !== null"))) << address;
        return text(QStringLiteral("got"));
    }
    void showFaults() {
        browser().setAttribute("faglie", "FLAG", "1");
        ASSERT_EQ(browser().fire("faglie", Fire::Onclick), PageStatus::Done);
    }
    static QString quoted(const std::string& address) {
        const QString array = QString::fromUtf8(
            QJsonDocument(QJsonArray{fromBytes(address)}).toJson(QJsonDocument::Compact));
        return array.mid(1, array.size() - 2);
    }
};

TEST_F(Site, OverlaysComeFromTheProgramsFolderWithoutAWebHost) {
    copyOverlays();
    ASSERT_TRUE(showMainPage());
    // The logo stands there from the beginning.
    EXPECT_TRUE(waitForPage(
        QStringLiteral("document.querySelectorAll('.tremor-screen-overlays img').length === 1")));
    showFaults();
    EXPECT_TRUE(waitForPage(QStringLiteral("ctaLayer.getStatus() === 'OK'")));
}

TEST_F(Site, AnOverlayThatIsNowhereLeavesTheMapAlone) {
    ASSERT_TRUE(showMainPage());
    showFaults();
    EXPECT_TRUE(waitForPage(QStringLiteral("ctaLayer.getStatus() !== 'UNKNOWN'")));
    EXPECT_EQ(text(QStringLiteral("ctaLayer.getStatus()")), "DOCUMENT_NOT_FOUND");
    EXPECT_EQ(browser().fire("getDataMap", Fire::Onclick), PageStatus::Done);
}

TEST_F(Site, TheWebHostIsAskedFirst) {
    copyOverlays();
    OneAnswerServer host(response("200 OK", "from the host"));
    environment.hosts.WebHost = host.address();
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(request(host.address() + "/TremorLedger/prova.kmz.txt"), "is from the host");
    EXPECT_EQ(host.paths, Texts{"/TremorLedger/prova.kmz.txt"});
}

TEST_F(Site, OverlaysComeFromTheProgramsFolderWhenTheWebHostFails) {
    copyOverlays();
    OneAnswerServer host(response("404 Not Found", "<html>nothing</html>"));
    environment.hosts.WebHost = host.address();
    ASSERT_TRUE(showMainPage());
    showFaults();
    EXPECT_TRUE(waitForPage(QStringLiteral("ctaLayer.getStatus() === 'OK'")));
    EXPECT_FALSE(host.paths.empty());
    // Logo and faults are asked for one after the other; the second failure is no news.
    EXPECT_EQ(log.messages,
              Texts{"OrvaLogo.kmz.txt does not come from the web host; the program's own overlays "
                    "are shown."});
}

TEST_F(Site, OverlaysComeFromTheProgramsFolderWhenTheWebHostIsSilentOrAway) {
    writeFileAtomically(folder.file("Img/a.txt"), "own", false);
    {
        OneAnswerServer silent{QByteArray()};
        environment.hosts.WebHost = silent.address();
        ASSERT_TRUE(showPage(mapsDouble));
        EXPECT_EQ(request(silent.address() + "/TremorLedger/a.txt"), "is own");
    }
    EXPECT_EQ(request(environment.hosts.WebHost + "/TremorLedger/a.txt"), "is own");
    EXPECT_EQ(request(environment.hosts.WebHost + "/TremorLedger/none.txt"), "failed");
}

TEST_F(Site, AnOverlayThatGoesOnAndOnIsNotTakenFromTheWebHost) {
    writeFileAtomically(folder.file("Img/a.txt"), "own", false);
    OneAnswerServer host(response("200 OK", QByteArray(60 << 20, 'x')));
    environment.hosts.WebHost = host.address();
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_TRUE(request(host.address() + "/TremorLedger/a.txt") == "is own"); // else 60 MiB
}

TEST_F(Site, AnOverlayIsAFileOfTheImageFolderAlone) {
    writeFileAtomically(folder.file("secret.txt"), "secret", false);
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(request("file:///TremorLedger/..%2Fsecret.txt"), "failed");
    EXPECT_EQ(request("tremor://overlays/..%2Fsecret.txt"), "failed");
    EXPECT_EQ(request("tremor://overlays/../secret.txt"), "failed");
    EXPECT_EQ(request("tremor://overlays/"), "failed");
    EXPECT_EQ(request("tremor://other/maps_engine.js"), "failed");
}

TEST_F(Site, FilesOutsideTheProgramsFolderStayClosed) {
    testing::TemporaryFolder outside;
    writeFileAtomically(outside.file("secret.txt"), "secret", false);
    writeFileAtomically(folder.file("own.txt"), "own", false);
    // Like the program's folder in its first letters.
    const std::string sibling = folder.path() + "2";
    createFolder(sibling);
    writeFileAtomically(sibling + "/secret.txt", "secret", false);
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(request("file://" + folder.file("own.txt")), "is own");
    EXPECT_EQ(request("file://" + outside.file("secret.txt")), "failed");
    EXPECT_EQ(request("file://" + sibling + "/secret.txt"), "failed");
    const std::string name = std::filesystem::path(outside.path()).filename().string();
    EXPECT_EQ(request("file://" + folder.path() + "/../" + name + "/secret.txt"), "failed");
    EXPECT_EQ(request("file://" + folder.path() + "/..%2F" + name + "/secret.txt"), "failed");
    EXPECT_EQ(request("file://" + folder.path() + "/%2e%2e/" + name + "/secret.txt"), "failed");
    std::filesystem::remove_all(sibling);
}

TEST_F(Site, LinksOutOfTheProgramsFolderStayClosed) {
    testing::TemporaryFolder outside;
    writeFileAtomically(outside.file("secret.txt"), "secret", false);
    writeFileAtomically(folder.file("own.txt"), "own", false);
    std::filesystem::create_symlink(outside.file("secret.txt"), folder.file("link.txt"));
    std::filesystem::create_directory_symlink(outside.path(), folder.file("linked"));
    std::filesystem::create_symlink(folder.file("own.txt"), folder.file("inside.txt"));
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(request("file://" + folder.file("link.txt")), "failed");
    EXPECT_EQ(request("file://" + folder.file("linked/secret.txt")), "failed");
    EXPECT_EQ(request("file://" + folder.file("inside.txt")), "is own");
}

TEST_F(Site, ThePagesAreReadAlsoWhenTheProgramsFolderIsItselfALink) {
    testing::TemporaryFolder links;
    applicationPath = links.file("program");
    std::filesystem::create_directory_symlink(folder.path(), applicationPath);
    writeFileAtomically(folder.file("own.txt"), "own", false);
    writeFileAtomically(folder.file("page.html"), "<!DOCTYPE html>" + mapsDouble, false);
    browser().Navigate(applicationPath + "/page.html");
    ASSERT_TRUE(waitFor([&] { return events.count("complete") > 0; }));
    EXPECT_EQ(log.messages, Texts{});
    EXPECT_EQ(request("file://" + applicationPath + "/own.txt"), "is own");
    EXPECT_EQ(request("file://" + folder.file("own.txt")), "is own");
}

TEST_F(Site, PinsBehindALinkAreShownAndTheRootIsNoFolderOfPins) {
    testing::TemporaryFolder pins;
    std::filesystem::create_directory(pins.file("real"));
    std::filesystem::copy_file(std::string(TREMOR_SHARE) + "/Img/b_14.png",
                               pins.file("real/b_14.png"));
    std::filesystem::create_directory_symlink(pins.file("real"), pins.file("linked"));
    std::filesystem::create_directory_symlink("/", pins.file("root"));
    ASSERT_TRUE(showPage(mapsDouble));
    settings.PathPins = pins.file("linked/");
    EXPECT_NE(picture("file://" + pins.file("linked/b_14.png")), "failed");
    settings.PathPins = pins.file("linked/b_");
    EXPECT_NE(picture("file://" + pins.file("linked/b_14.png?2")), "failed");
    settings.PathPins = pins.file("linked/g_");
    EXPECT_EQ(picture("file://" + pins.file("linked/b_14.png?3")), "failed");
    settings.PathPins = pins.file("root/");
    EXPECT_EQ(picture("file://" + pins.file("real/b_14.png")), "failed");
}

TEST_F(Site, PinsComeFromTheOperatorsFolderAsItIsAtThatMoment) {
    testing::TemporaryFolder pins;
    std::filesystem::copy_file(std::string(TREMOR_SHARE) + "/Img/b_14.png", pins.file("b_14.png"),
                               std::filesystem::copy_options::overwrite_existing);
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(picture("file://" + pins.file("b_14.png")), "failed");
    settings.PathPins = pins.path() + "/";
    EXPECT_NE(picture("file://" + pins.file("b_14.png")), "failed");
    settings.PathPins = "file://" + pins.path() + "/";
    EXPECT_NE(picture("file://" + pins.file("b_14.png?2")), "failed");
    settings.PathPins = "/";
    EXPECT_EQ(picture("file://" + pins.file("b_14.png?3")), "failed");
}

TEST_F(Site, TheSourceOfTilesReachesThePage) {
    environment.hosts.TileUrl = "http://127.0.0.1:9/{z}/{x}/{y}.png";
    environment.hosts.TileAttribution = "Tiles \"of\" </script> ours";
    ASSERT_TRUE(showPage(mapsDouble));
    EXPECT_EQ(text(QStringLiteral("TREMOR_MAP_OPTIONS.tileUrl")), environment.hosts.TileUrl);
    EXPECT_EQ(text(QStringLiteral("TREMOR_MAP_OPTIONS.tileAttribution")),
              environment.hosts.TileAttribution);
}

// What a page opens outside of itself.
class DesktopDouble : public QObject {
    Q_OBJECT

  public:
    DesktopDouble() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }
    ~DesktopDouble() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }
    QList<QUrl> opened;

  public Q_SLOTS:
    void open(const QUrl& url) { opened.append(url); }
};

TEST_F(Site, LinksOpenOutsideAndThePageStays) {
    DesktopDouble desktop;
    ASSERT_TRUE(showPage(mapsDouble +
                         "<style>a { position: fixed; left: 0; width: 800px; height: 100px }"
                         "</style><a style='top: 0' href='https://example.invalid/a'>a</a>"
                         "<a style='top: 100px' target='_blank' href='https://example.invalid/b'>b"
                         "</a><a style='top: 200px' href='own.html'>c</a>"));
    writeFileAtomically(folder.file("own.html"), "own", false);
    turnEvents(300);
    QWidget* target = browser().view().focusProxy();
    for (const int y : {50, 150, 250}) {
        QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, QPoint(400, y));
        turnEvents(300);
    }
    ASSERT_TRUE(waitFor([&] { return desktop.opened.size() == 2; }, 5000));
    EXPECT_EQ(desktop.opened.at(0), QUrl(QStringLiteral("https://example.invalid/a")));
    EXPECT_EQ(desktop.opened.at(1), QUrl(QStringLiteral("https://example.invalid/b")));
    EXPECT_EQ(text(QStringLiteral("location.pathname")), folder.file("page.html"));
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(Site, AScriptCannotTakeThePageElsewhere) {
    DesktopDouble desktop;
    writeFileAtomically(folder.file("own.html"), "own", false);
    ASSERT_TRUE(showPage(mapsDouble));
    const std::string there = text(QStringLiteral("location.href"));
    for (const char* script :
         {"location.replace('https://example.invalid/a')", "location.replace('own.html')",
          "location.assign('own.html?1')", "location.search = '?99'", "location.reload()",
          "(() => { const form = document.createElement('form'); form.action = 'own.html';"
          "document.body.appendChild(form); form.submit(); return 0; })()",
          "(() => { const link = document.createElement('meta'); link.httpEquiv = 'refresh';"
          "link.content = '0; url=own.html'; document.head.appendChild(link); return 0; })()"}) {
        evaluate(QString::fromLatin1(script));
        turnEvents(300);
        EXPECT_EQ(text(QStringLiteral("location.href")), there) << script;
        EXPECT_EQ(browser().ReadyState(), WebBrowser::complete) << script;
    }
    EXPECT_EQ(desktop.opened, QList<QUrl>{});
    EXPECT_EQ(log.messages, Texts{});
    // The program itself may leave it.
    ASSERT_TRUE(showFile("own.html"));
    EXPECT_EQ(text(QStringLiteral("location.pathname")), folder.file("own.html"));
}

} // namespace
} // namespace tremor

#include "map_site_test.moc"
