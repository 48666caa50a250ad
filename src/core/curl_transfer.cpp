#include "core/curl_transfer.h"

namespace tremor {

CurlTransfer::CurlTransfer() : easy_(curl_easy_init()), multi_(curl_multi_init()) {}

CurlTransfer::~CurlTransfer() {
    if (started_)
        curl_multi_remove_handle(multi_.get(), easy_.get());
}

void CurlTransfer::setBounds(const CurlBounds& bounds) {
    CURL* easy = easy_.get();
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    // This replaces libcurl's bundle only; its folder of the system's authorities (CURLOPT_CAPATH)
    // stays in force beside it.
    if (!bounds.certificateAuthorityFile.empty())
        curl_easy_setopt(easy, CURLOPT_CAINFO, bounds.certificateAuthorityFile.c_str());

    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, static_cast<long>(bounds.connectSeconds));
    curl_easy_setopt(easy, CURLOPT_TIMEOUT, static_cast<long>(bounds.totalSeconds));
    // No signals for time-outs of the resolver, and no waiting for its thread when the transfer is
    // dropped: a cancel must not hang on a silent name server.
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
}

bool CurlTransfer::start() {
    started_ = easy_ && multi_ && curl_multi_add_handle(multi_.get(), easy_.get()) == CURLM_OK;
    return started_;
}

void CurlTransfer::advance() {
    if (finished_)
        return;
    int running = 0;
    if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) {
        finished_ = true;
        result_ = CURLE_RECV_ERROR;
        return;
    }
    int waiting = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &waiting)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        finished_ = true;
        result_ = message->data.result;
    }
}

void CurlTransfer::waitForTraffic() {
    curl_multi_poll(multi_.get(), nullptr, 0, curlTurnMilliseconds, nullptr);
}

} // namespace tremor
