#include "ingest/http_transfer.h"

#include "core/version.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <exception>

namespace tremor {

namespace {

constexpr std::string_view locationField = "location:";

bool namesALocation(std::string_view line) {
    return line.size() > locationField.size() &&
           strncasecmp(line.data(), locationField.data(), locationField.size()) == 0 &&
           line.find_first_not_of(" \t\r\n", locationField.size()) != std::string_view::npos;
}

// A tab or a line end would make other cookies of it.
bool fitsIntoALine(const HttpCookie& cookie) {
    const auto isControl = [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; };
    const std::string text = cookie.name + cookie.value + cookie.domain + cookie.path;
    return !cookie.domain.empty() && std::none_of(text.begin(), text.end(), isControl);
}

// As libcurl reads it (https://curl.se/docs/http-cookies.html):
// "example.org\tFALSE\t/\tFALSE\t0\tname\tvalue".
std::string cookieLine(const HttpCookie& cookie) {
    const auto flag = [](bool on) { return on ? "TRUE" : "FALSE"; };
    return fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}", cookie.domain, flag(cookie.ofSubdomains),
                       cookie.path, flag(cookie.secure), cookie.expires, cookie.name, cookie.value);
}

} // namespace

HttpTransfer::HttpTransfer(std::string_view url, const DownloadLimits& limits,
                           const HttpCookies& cookies)
    : maximumBytes_(limits.maximumBytes) {
    if (transfer_.easy() == nullptr)
        return;
    setOptions(url, limits);
    setCookies(cookies);
    started_ = transfer_.start();
}

void HttpTransfer::setOptions(std::string_view url, const DownloadLimits& limits) {
    CURL* easy = transfer_.easy();
    curl_easy_setopt(easy, CURLOPT_URL, percentEncodeRefused(url).c_str());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, programTitle);
    // Always from the server, never from a cache on the way.
    requestHeaders_.reset(curl_slist_append(nullptr, "Cache-Control: no-cache"));
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, requestHeaders_.get());

    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, static_cast<long>(limits.maximumRedirects));

    transfer_.setBounds(
        {limits.connectSeconds, limits.totalSeconds, limits.certificateAuthorityFile});
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.stallSeconds));
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, static_cast<long>(limits.stallBytesPerSecond));

    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
}

// libcurl's own store of cookies knows which request each of them belongs to; a header of the
// program's own would follow every redirect.
void HttpTransfer::setCookies(const HttpCookies& cookies) {
    for (const HttpCookie& cookie : cookies) {
        if (fitsIntoALine(cookie))
            curl_easy_setopt(transfer_.easy(), CURLOPT_COOKIELIST, cookieLine(cookie).c_str());
    }
}

int HttpTransfer::status() const {
    long status = 0;
    curl_easy_getinfo(transfer_.easy(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

std::int64_t HttpTransfer::contentLength() const {
    curl_off_t length = -1;
    curl_easy_getinfo(transfer_.easy(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    return length < 0 ? 0 : length;
}

std::string_view HttpTransfer::take(std::size_t size) {
    const std::string_view part = std::string_view(body_).substr(taken_, size);
    taken_ += part.size();
    return part;
}

std::size_t HttpTransfer::onHeader(char* data, std::size_t size, std::size_t count, void* self) {
    static_cast<HttpTransfer*>(self)->readHeaderLine({data, size * count});
    return size * count;
}

// A redirect that is going to be followed, and the interim answers 1xx, are not the answer.
void HttpTransfer::readHeaderLine(std::string_view line) {
    if (line.starts_with("HTTP/"))
        redirect_ = false;
    else if (namesALocation(line))
        redirect_ = true;
    else if (line == "\r\n" || line == "\n")
        answered_ = answered_ || (status() >= 200 && !(status() / 100 == 3 && redirect_));
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    const std::size_t bytes = size * count;
    transfer.answered_ = true;
    transfer.received_ += static_cast<std::int64_t>(bytes);
    if (transfer.received_ > transfer.maximumBytes_)
        return CURL_WRITEFUNC_ERROR;
    try {
        transfer.body_.erase(0, transfer.taken_);
        transfer.taken_ = 0;
        transfer.body_.append(data, bytes);
    } catch (const std::exception&) {
        return CURL_WRITEFUNC_ERROR; // nothing may be thrown through libcurl
    }
    return bytes;
}

std::string percentEncodeRefused(std::string_view url) {
    constexpr std::string_view refused = "\"<>\\^`{|}";
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(url.size());
    for (const char c : url) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte < 0x7F && refused.find(c) == std::string_view::npos) {
            encoded += c;
        } else {
            encoded += '%';
            encoded += hexDigits[byte >> 4];
            encoded += hexDigits[byte & 0x0F];
        }
    }
    return encoded;
}

} // namespace tremor
