#pragma once

#include <curl/curl.h>

#include <memory>

// Owning handles for libcurl.
namespace tremor {

template <auto release>
struct CurlRelease {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};

using CurlEasy = std::unique_ptr<CURL, CurlRelease<curl_easy_cleanup>>;
using CurlMulti = std::unique_ptr<CURLM, CurlRelease<curl_multi_cleanup>>;
using CurlHeaders = std::unique_ptr<curl_slist, CurlRelease<curl_slist_free_all>>;
using CurlUrl = std::unique_ptr<CURLU, CurlRelease<curl_url_cleanup>>;
using CurlText = std::unique_ptr<char, CurlRelease<curl_free>>;

// How long a wait on the network may keep pending window messages waiting. curl_multi_poll comes
// back earlier as soon as something arrives.
inline constexpr int curlTurnMilliseconds = 20;

} // namespace tremor
