#include "core/version.h"
#include "ingest/http_transfer.h"
#include "support/download_fixture.h"
#include "support/loopback_server.h"
#include "support/raw_server.h"
#include "support/texts.h"

#include <chrono>
#include <ostream>

// What goes over the wire, and what becomes of every answer that a server may give, seen through
// the downloader.
namespace tremor::testing {
namespace {

using namespace std::chrono_literals;
using Calls = std::vector<std::string>;

// A server that reads the request and says these bytes, then closes.
class SayingServer : public RawServer {
  public:
    explicit SayingServer(std::string bytes)
        : RawServer([bytes = std::move(bytes)](const RawConnection& client) {
              client.readHead();
              client.send(bytes);
          }) {}
};

LoopbackServer::Handler serving(int status, std::string body) {
    return [status, body = std::move(body)](const LoopbackRequest&) {
        return LoopbackAnswer{status, body};
    };
}

// Redirects every path but /end to `location`.
LoopbackServer::Handler redirecting(std::string location) {
    return [location = std::move(location)](const LoopbackRequest& request) {
        if (request.target.starts_with("/end"))
            return LoopbackAnswer{200, "the end"};
        return LoopbackAnswer{302, "moved, and a body of its own", {{"Location", location}}};
    };
}

TEST(PercentEncodeRefused, EncodesBlanksControlBytesBytesBeyondAsciiAndDelimiters) {
    EXPECT_EQ(percentEncodeRefused("http://h/a b\r\n\tc"), "http://h/a%20b%0D%0A%09c");
    EXPECT_EQ(percentEncodeRefused("\"<>\\^`{|}"), "%22%3C%3E%5C%5E%60%7B%7C%7D");
    EXPECT_EQ(percentEncodeRefused("Forl\xC3\xAC\x7F"), "Forl%C3%AC%7F");
    EXPECT_EQ(percentEncodeRefused(std::string_view("a\0b", 3)), "a%00b");
}

TEST(PercentEncodeRefused, LeavesEverythingElseAlone) {
    const std::string url = "https://u:p@h:8/a/%0A%3A?q=1+2&r=[3];s=~!$'()*,-._@#frag";
    EXPECT_EQ(percentEncodeRefused(url), url);
    EXPECT_EQ(percentEncodeRefused(""), "");
}

using HttpTransferTest = DownloadTest;

TEST_F(HttpTransferTest, SendsTheUrlEncodedWithTheProgramsNameAndAsksForNoCompression) {
    const LoopbackServer server(serving(200, "ok"));
    download(server.url("/a b|c%0A?x=1+2&y={3}#fragment"));
    ASSERT_EQ(server.requests().size(), 1u);
    const LoopbackRequest request = server.requests().front();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.target, "/a%20b%7Cc%0A?x=1+2&y=%7B3%7D");
    EXPECT_EQ(request.header("User-Agent"), programTitle);
    EXPECT_EQ(request.header("Cache-Control"), "no-cache");
    EXPECT_EQ(request.header("Accept-Encoding"), "");
}

TEST_F(HttpTransferTest, WritesACompressedBodyAsItComes) {
    const LoopbackServer server([](const LoopbackRequest&) {
        return LoopbackAnswer{200, "\x1F\x8B-no-real-gzip", {{"Content-Encoding", "gzip"}}};
    });
    download(server.url("/"));
    EXPECT_EQ(events.last(), "completed");
    EXPECT_EQ(contentOf(target), "\x1F\x8B-no-real-gzip");
}

struct Status {
    int status;
    const char* error;
};

void PrintTo(const Status& value, std::ostream* stream) {
    *stream << value.status;
}

class RefusedStatus : public HttpTransferTest, public ::testing::WithParamInterface<Status> {};

TEST_P(RefusedStatus, IsReportedWithItsTextAndLeavesNoFile) {
    const int status = GetParam().status;
    const std::string body = status == 204 ? "" : "words of the server";
    const LoopbackServer server(serving(status, body));
    writeFile(target, "old");
    download(server.url("/bot-secret-token"));
    EXPECT_EQ(events.calls, Calls{std::string("error: ") + GetParam().error});
    EXPECT_FALSE(targetExists());
}

INSTANTIATE_TEST_SUITE_P(
    OfServer, RefusedStatus,
    ::testing::Values(Status{404, "Requested file does not exists on the server."},
                      Status{204, "Can't download requested file.\r\nServer error code:204."},
                      Status{500, "Can't download requested file.\r\nServer error code:500."},
                      Status{403, "Can't download requested file.\r\nServer error code:403."},
                      Status{201, "Can't download requested file.\r\nServer error code:201."},
                      Status{304, "Can't download requested file.\r\nServer error code:304."}),
    [](const auto& values) { return "Status" + std::to_string(values.param.status); });

TEST_F(HttpTransferTest, ReportsABadStatusWithoutWaitingForItsBody) {
    const RawServer server([](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 404 Not Found\r\nContent-Length: 10\r\n\r\n");
        client.stall();
    });
    limits.stallSeconds = 60;
    limits.totalSeconds = 60;
    const auto start = std::chrono::steady_clock::now();
    download(server.url("/"));
    EXPECT_EQ(events.calls, Calls{"error: Requested file does not exists on the server."});
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST_F(HttpTransferTest, PassesOverInterimAnswers) {
    const SayingServer server("HTTP/1.1 100 Continue\r\n\r\n"
                              "HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n"
                              "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody");
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "completed"}));
    EXPECT_EQ(contentOf(target), "body");
}

TEST_F(HttpTransferTest, FailsAndDeletesTheFileWhenTheBodyIsShorterThanAnnounced) {
    const SayingServer server("HTTP/1.1 200 OK\r\nContent-Length: 20000\r\n\r\n" +
                              std::string(9000, 'x'));
    download(server.url("/secret-token"));
    EXPECT_EQ(events.calls, (Calls{"size 20", "chunk 4", "chunk 8", brokenDownload}));
    EXPECT_FALSE(targetExists());
}

TEST_F(HttpTransferTest, FailsWhenAChunkedBodyIsCut) {
    const SayingServer server("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                              "10\r\n0123456789abcdef\r\n10\r\n0123");
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 0", brokenDownload}));
    EXPECT_FALSE(targetExists());
}

TEST_F(HttpTransferTest, TakesTheCloseAsTheEndWhenNothingElseTellsIt) {
    const SayingServer server("HTTP/1.0 200 OK\r\n\r\nuntil the end");
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 0", "chunk 0", "completed"}));
    EXPECT_EQ(contentOf(target), "until the end");
}

struct Malformed {
    const char* name;
    std::string bytes;
};

void PrintTo(const Malformed& value, std::ostream* stream) {
    *stream << value.name;
}

class MalformedAnswer : public HttpTransferTest, public ::testing::WithParamInterface<Malformed> {};

TEST_P(MalformedAnswer, CountsAsNoAnswer) {
    const SayingServer server(GetParam().bytes);
    download(server.url("/secret-token"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});
    EXPECT_FALSE(targetExists());
}

INSTANTIATE_TEST_SUITE_P(
    OfServer, MalformedAnswer,
    ::testing::Values(Malformed{"Nothing", ""}, Malformed{"Noise", "\x01\x02\xFFgarbage\r\n\r\n"},
                      Malformed{"WordsOnly", "hello, I am no web server\r\n\r\nindeed"},
                      Malformed{"HalfAHead", "HTTP/1.1 200 OK\r\nContent-Le"},
                      Malformed{"AbsurdVersion", "HTTP/9.9 200 OK\r\n\r\nbody"},
                      Malformed{"NegativeLength", "HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nx"},
                      Malformed{"EndlessHead",
                                "HTTP/1.1 200 OK\r\nX: " + std::string(2'000'000, 'x')}),
    [](const auto& values) { return values.param.name; });

TEST_F(HttpTransferTest, FailsWhenTheServerSendsNothingAfterTheHead) {
    limits.stallSeconds = 1;
    limits.totalSeconds = 60;
    const RawServer server([](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: 5000\r\n\r\n" + std::string(4096, 'x'));
        client.stall();
    });
    const auto start = std::chrono::steady_clock::now();
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 5", "chunk 4", brokenDownload}));
    EXPECT_FALSE(targetExists());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    EXPECT_GT(clock.pumps, 5); // about 50 on an idle machine
}

TEST_F(HttpTransferTest, FailsWhenTheServerNeverAnswers) {
    limits.stallSeconds = 1;
    const RawServer server([](const RawConnection& client) { client.stall(); });
    download(server.url("/"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});
}

TEST_F(HttpTransferTest, FailsWhenTheConnectionNeverStands) {
    limits.connectSeconds = 1;
    const SilentPort silent;
    download("http://127.0.0.1:" + std::to_string(silent.port()) + "/");
    EXPECT_EQ(events.calls, Calls{cannotOpen});
    EXPECT_GT(clock.pumps, 5); // about 50 on an idle machine
}

// Sends one byte every `pause`.
RawServer::Talk dripping(int bytes, std::chrono::milliseconds pause) {
    return [bytes, pause](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(bytes) + "\r\n\r\n");
        for (int i = 0; i < bytes && client.send("x"); ++i)
            client.pause(pause);
    };
}

TEST_F(HttpTransferTest, FailsOnASlowerServerThanTheLimitThoughBytesKeepComing) {
    limits.stallSeconds = 2;
    const RawServer server(dripping(1000, 400ms));
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", brokenDownload}));
}

TEST_F(HttpTransferTest, WaitsForASlowServerAboveTheLimit) {
    limits.stallSeconds = 1;
    limits.stallBytesPerSecond = 2;
    const RawServer server(dripping(50, 50ms));
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "completed"}));
}

TEST_F(HttpTransferTest, EndsWithTheLimitOfTheWholeTransfer) {
    limits.totalSeconds = 1;
    const RawServer server(dripping(1000, 20ms));
    download(server.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 1", brokenDownload}));
}

TEST_F(HttpTransferTest, CutsAnEndlessBodyAtTheCap) {
    limits.maximumBytes = 1'000'000;
    const RawServer server([](const RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\n\r\n");
        while (client.send(std::string(65536, 'x'))) {
        }
    });
    download(server.url("/"));
    EXPECT_EQ(events.last(), brokenDownload);
    EXPECT_FALSE(targetExists());
    EXPECT_LE(events.calls.size(), 2u + 1'000'000 / 4096);
    EXPECT_GE(events.calls.size(), 2u + 900'000 / 4096);
}

TEST_F(HttpTransferTest, RefusesABodyThatIsAnnouncedOverTheCapAndTakesOneAtTheCap) {
    limits.maximumBytes = 5000;
    const LoopbackServer server([](const LoopbackRequest& request) {
        return LoopbackAnswer{200, std::string(request.target == "/fits" ? 5000 : 5001, 'x')};
    });
    download(server.url("/fits"));
    EXPECT_EQ(events.calls, (Calls{"size 5", "chunk 4", "chunk 5", "completed"}));
    events.calls.clear();
    download(server.url("/over"));
    EXPECT_EQ(events.calls, Calls{brokenDownload});
    EXPECT_FALSE(targetExists());
}

TEST_F(HttpTransferTest, SurvivesAnAnnouncedLengthBeyondAllNumbers) {
    const SayingServer server("HTTP/1.1 200 OK\r\nContent-Length: 9223372036854775807\r\n\r\nbody");
    download(server.url("/"));
    EXPECT_EQ(events.calls, Calls{brokenDownload});
    events.calls.clear();
    const SayingServer beyond(
        "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999999\r\n\r\nbody");
    download(beyond.url("/"));
    EXPECT_EQ(events.calls, (Calls{"size 0", "chunk 0", "completed"}));
}

TEST_F(HttpTransferTest, FollowsRedirectsAndLeavesTheirBodiesOut) {
    const LoopbackServer server(redirecting("/end"));
    download(server.url("/start"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "completed"}));
    EXPECT_EQ(contentOf(target), "the end");
}

TEST_F(HttpTransferTest, GivesUpOnARedirectLoop) {
    limits.maximumRedirects = 4;
    const LoopbackServer server(redirecting("/again"));
    download(server.url("/start"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});
    EXPECT_EQ(server.requests().size(), 5u);
}

TEST_F(HttpTransferTest, RefusesARedirectToAnythingButHttp) {
    const std::string secret = folder.file("secret");
    writeFile(secret, "local secret");
    for (const std::string& location :
         {"file://" + secret, std::string("ftp://127.0.0.1/x"), std::string("gopher://127.0.0.1/x"),
          std::string("javascript:alert(1)")}) {
        events.calls.clear();
        const LoopbackServer server(redirecting(location));
        download(server.url("/start"));
        EXPECT_EQ(events.last(), cannotOpen) << location;
        EXPECT_FALSE(targetExists()) << location;
    }
}

TEST_F(HttpTransferTest, RefusesAnyOtherSchemeAndNamesThatAreNone) {
    const std::string secret = folder.file("secret");
    writeFile(secret, "local secret");
    for (const std::string& url :
         {"file://" + secret, std::string("ftp://127.0.0.1/x"), std::string("http://"),
          std::string("http://127.0.0.1:99999/"), std::string("::"), std::string(" ")}) {
        events.calls.clear();
        download(url);
        EXPECT_EQ(events.calls, Calls{cannotOpen}) << url;
        EXPECT_FALSE(targetExists()) << url;
    }
}

TEST_F(HttpTransferTest, TrustsACertificateOfTheAdditionalAuthorityOnly) {
    const TestCertificate certificate(folder.path());
    const LoopbackServer server(serving(200, "over TLS"), certificate);
    download(server.url("/", "localhost"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});

    events.calls.clear();
    limits.certificateAuthorityFile = certificate.certificateFile();
    download(server.url("/", "localhost"));
    EXPECT_EQ(events.calls, (Calls{"size 1", "chunk 0", "completed"}));
    EXPECT_EQ(contentOf(target), "over TLS");
}

TEST_F(HttpTransferTest, RefusesATrustedCertificateOfAnotherHost) {
    const TestCertificate certificate(folder.path());
    const LoopbackServer server(serving(200, "over TLS"), certificate);
    limits.certificateAuthorityFile = certificate.certificateFile();
    download(server.url("/", "127.0.0.1"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(HttpTransferTest, RefusesTlsWhenTheAdditionalAuthorityCannotBeRead) {
    const TestCertificate certificate(folder.path());
    const LoopbackServer server(serving(200, "over TLS"), certificate);
    limits.certificateAuthorityFile = folder.file("missing.pem");
    download(server.url("/", "localhost"));
    EXPECT_EQ(events.calls, Calls{cannotOpen});
}

// The "Cookie" fields of the requests that a server has had, in their order.
Calls cookiesOf(const LoopbackServer& server) {
    Calls fields;
    for (const LoopbackRequest& request : server.requests())
        fields.push_back(request.header("Cookie"));
    return fields;
}

TEST_F(HttpTransferTest, SendsTheCookiesOfHostAndPathAndNoOthers) {
    const LoopbackServer server(serving(200, "ok"));
    cookies = {{.name = "session", .value = "a=b c", .domain = "127.0.0.1", .path = "/iside"},
               {.name = "all", .value = "", .domain = "127.0.0.1"},
               {.name = "other", .value = "1", .domain = "example.org"},
               {.name = "nobody", .value = "1", .domain = ""}};
    download(server.url("/iside/download?x=1"));
    download(server.url("/isides"));
    download(server.url("/"));
    download(server.url("/", "localhost"));
    EXPECT_EQ(cookiesOf(server), (Calls{"session=a=b c; all=", "all=", "all=", ""}));
}

TEST_F(HttpTransferTest, SendsACookieOfSubdomainsBelowItsDomainOnly) {
    const LoopbackServer server(serving(200, "ok"));
    cookies = {{.name = "wide", .value = "1", .domain = "a.localhost", .ofSubdomains = true},
               {.name = "own", .value = "1", .domain = "a.localhost"}};
    for (const char* host : {"a.localhost", "b.a.localhost", "ba.localhost"})
        download(server.url("/", host));
    EXPECT_EQ(cookiesOf(server), (Calls{"wide=1; own=1", "wide=1", ""}));
}

TEST_F(HttpTransferTest, SendsNoCookieThatIsOverOrForTlsAlone) {
    const LoopbackServer server(serving(200, "ok"));
    const std::string host = "a.localhost"; // curl takes "localhost" itself for as good as TLS
    cookies = {{.name = "over", .value = "1", .domain = host, .expires = 1000000000},
               {.name = "tls", .value = "1", .domain = host, .secure = true},
               {.name = "later", .value = "1", .domain = host, .expires = 32503680000}};
    download(server.url("/", host));
    EXPECT_EQ(cookiesOf(server), Calls{"later=1"});
}

TEST_F(HttpTransferTest, TakesNoCookieAlongToAnotherHost) {
    const LoopbackServer server([](const LoopbackRequest& request) {
        const std::string host = request.header("Host");
        const std::string port = host.substr(host.rfind(':'));
        const std::string next = request.target == "/start" ? "http://a.localhost" + port + "/own"
                                 : request.target == "/own" ? "http://b.localhost" + port + "/end"
                                                            : "";
        return next.empty() ? LoopbackAnswer{200, "the end"}
                            : LoopbackAnswer{302, "", {{"Location", next}}};
    });
    cookies = {{.name = "session", .value = "1", .domain = "a.localhost"}};
    download(server.url("/start", "a.localhost"));
    EXPECT_EQ(events.last(), "completed");
    EXPECT_EQ(cookiesOf(server), (Calls{"session=1", "session=1", ""}));
}

TEST_F(HttpTransferTest, DropsACookieThatWouldBecomeAnotherOneOrAHeader) {
    const LoopbackServer server(serving(200, "ok"));
    const std::string host = "127.0.0.1";
    cookies = {{.name = "a", .value = "1\r\nX-Evil: 1", .domain = host},
               {.name = "b\t", .value = "1", .domain = host},
               {.name = "c",
                .value = std::string("1\0"
                                     "2",
                                     3),
                .domain = host},
               {.name = "d", .value = "1", .domain = host, .path = "/\n"},
               {.name = "good", .value = "1", .domain = host}};
    download(server.url("/"));
    EXPECT_EQ(cookiesOf(server), Calls{"good=1"});
    EXPECT_EQ(server.requests().front().header("X-Evil"), "");
}

TEST_F(HttpTransferTest, ForgetsTheCookiesOfATransferWithIt) {
    const LoopbackServer server([](const LoopbackRequest&) {
        return LoopbackAnswer{200, "ok", {{"Set-Cookie", "set=1; Path=/"}}};
    });
    cookies = {{.name = "session", .value = "1", .domain = "127.0.0.1"}};
    download(server.url("/"));
    cookies.clear();
    download(server.url("/"));
    EXPECT_EQ(cookiesOf(server), (Calls{"session=1", ""}));
}

// The additional authority replaces libcurl's bundle; the system's authorities must come from here.
TEST(SystemAuthorities, StandInAFolderBesideTheBundle) {
    const char* folder = curl_version_info(CURLVERSION_NOW)->capath;
    ASSERT_NE(folder, nullptr);
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(HttpTransferTest, FollowsARedirectFromHttpToHttps) {
    const TestCertificate certificate(folder.path());
    const LoopbackServer secure(serving(200, "over TLS"), certificate);
    const LoopbackServer plain(redirecting(secure.url("/", "localhost")));
    limits.certificateAuthorityFile = certificate.certificateFile();
    download(plain.url("/start"));
    EXPECT_EQ(events.last(), "completed");
    EXPECT_EQ(contentOf(target), "over TLS");
}

} // namespace
} // namespace tremor::testing
