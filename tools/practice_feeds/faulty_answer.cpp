#include "practice_feeds/faulty_answer.h"

#include <httplib.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

// A fault needs a body to spoil, also when the service has nothing to say.
std::string bodyToSpoil(const Answer& answer) {
    return answer.body.empty() ? std::string(1000, '#') : answer.body;
}

std::string garbage() {
    std::mt19937 random(1);
    std::string bytes(3000, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
        if (byte == '\n')
            byte = '\r';
    }
    return bytes;
}

// False when the client has gone or the server ends.
bool waitWhileConnected(const httplib::DataSink& sink, const std::atomic<bool>& ending,
                        std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        if (ending || !sink.is_writable())
            return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

// Half of the body at once, then nothing for `silence`, then the connection is closed.
void respondHalf(const Answer& answer, httplib::Response& response, const std::atomic<bool>& ending,
                 std::chrono::milliseconds silence) {
    const std::string body = bodyToSpoil(answer);
    response.set_content_provider(
        body.size(), answer.contentType,
        [body, silence, &ending](std::size_t, std::size_t, httplib::DataSink& sink) {
            sink.write(body.data(), body.size() / 2);
            waitWhileConnected(sink, ending, silence);
            return false;
        });
}

void respondSlowly(const Answer& answer, httplib::Response& response,
                   const std::atomic<bool>& ending) {
    const std::string body = bodyToSpoil(answer);
    response.set_content_provider(
        body.size(), answer.contentType,
        [body, &ending](std::size_t offset, std::size_t, httplib::DataSink& sink) {
            return sink.write(body.data() + offset, 1) && waitWhileConnected(sink, ending, 1s);
        });
}

// In HTTP chunks without a length, as the public services send their documents.
void respondWell(const Answer& answer, httplib::Response& response) {
    if (answer.body.empty())
        return;
    response.set_chunked_content_provider(
        answer.contentType, [body = answer.body](std::size_t, httplib::DataSink& sink) {
            sink.write(body.data(), body.size());
            sink.done();
            return true;
        });
}

} // namespace

void respond(const Answer& answer, Fault fault, httplib::Response& response,
             const std::atomic<bool>& ending) {
    constexpr auto withoutEnd = std::chrono::hours(24);
    response.status = 200;
    switch (fault) {
    case Fault::None:
        response.status = answer.status;
        respondWell(answer, response);
        break;
    case Fault::Status404:
        response.status = 404;
        response.set_content("Error 404: Not Found\n", "text/plain");
        break;
    case Fault::Status204:
        response.status = 204;
        break;
    case Fault::Status500:
        response.status = 500;
        response.set_content("Error 500: Internal Server Error\n", "text/plain");
        break;
    case Fault::Cut:
        respondHalf(answer, response, ending, 0ms);
        break;
    case Fault::Stall:
        respondHalf(answer, response, ending, withoutEnd);
        break;
    case Fault::Garbage:
        response.set_content(garbage(), answer.contentType);
        break;
    case Fault::Slow:
        respondSlowly(answer, response, ending);
        break;
    }
}

} // namespace tremor::practice
