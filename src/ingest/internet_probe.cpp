#include "ingest/internet_probe.h"

#include "core/curl_handle.h"
#include "core/flag_scope.h"

#include <optional>
#include <utility>

namespace tremor {

namespace {

std::optional<std::string> urlPart(CURLU* url, CURLUPart part) {
    char* raw = nullptr;
    if (curl_url_get(url, part, &raw, CURLU_DEFAULT_PORT) != CURLUE_OK)
        return std::nullopt;
    const CurlText text(raw);
    return std::string(text.get());
}

// The address with the scheme http, so that libcurl stops when the TCP connection stands: with
// https it would go on to TLS, which says nothing more about the network.
std::string plainAddress(const std::string& address) {
    const CurlUrl url(curl_url());
    if (!url || curl_url_set(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK)
        return {};
    const auto host = urlPart(url.get(), CURLUPART_HOST);
    const auto port = urlPart(url.get(), CURLUPART_PORT);
    return host && port ? "http://" + *host + ":" + *port : std::string();
}

} // namespace

InternetProbe::InternetProbe(std::string address, Clock& clock, Session& session,
                             std::chrono::milliseconds limit)
    : address_(std::move(address)), clock_(clock), session_(session), limit_(limit) {}

bool InternetProbe::IsInternetUp() {
    if (probing_)
        return session_.InternetUp;
    const FlagScope probing(probing_);
    session_.InternetUp = connects();
    return session_.InternetUp;
}

bool InternetProbe::connects() const {
    const std::string url = plainAddress(address_);
    const CurlEasy easy(curl_easy_init());
    const CurlMulti multi(curl_multi_init());
    if (url.empty() || !easy || !multi)
        return false;
    curl_easy_setopt(easy.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy.get(), CURLOPT_CONNECT_ONLY, 1L);
    curl_easy_setopt(easy.get(), CURLOPT_NOSIGNAL, 1L);
    // Giving up must not wait for the thread of a silent name server.
    curl_easy_setopt(easy.get(), CURLOPT_QUICK_EXIT, 1L);
    if (curl_multi_add_handle(multi.get(), easy.get()) != CURLM_OK)
        return false;

    bool connected = false;
    // The limit is looked at behind a try and not by libcurl: a long message handler inside the
    // pump must not make a connection that stands count as none.
    const auto deadline = clock_.steady() + limit_;
    while (!session_.waitsMustEnd()) {
        int running = 0;
        if (curl_multi_perform(multi.get(), &running) != CURLM_OK)
            break;
        if (running == 0) {
            int waiting = 0;
            const CURLMsg* message = curl_multi_info_read(multi.get(), &waiting);
            connected = message != nullptr && message->msg == CURLMSG_DONE &&
                        message->data.result == CURLE_OK;
            break;
        }
        if (clock_.steady() >= deadline)
            break;
        curl_multi_poll(multi.get(), nullptr, 0, curlTurnMilliseconds, nullptr);
        clock_.pump();
    }
    curl_multi_remove_handle(multi.get(), easy.get());
    return connected;
}

} // namespace tremor
