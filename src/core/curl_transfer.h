#pragma once

#include "core/curl_handle.h"

#include <string>

namespace tremor {

// What every transfer keeps to, whatever its protocol.
struct CurlBounds {
    int connectSeconds = 30;              // until the connection stands
    int totalSeconds = 3600;              // the whole transfer
    std::string certificateAuthorityFile; // additional authority; empty: the system's only
};

// One transfer of libcurl that its owner drives turn by turn: no call blocks for longer than a
// turn, and none calls back into the program except through the owner's own options, so that the
// owner may let window messages run between turns.
class CurlTransfer {
  public:
    CurlTransfer();
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    // Where the owner sets its options; null when libcurl gave no session.
    CURL* easy() const { return easy_.get(); }

    // Certificates are always checked, against the host's name, too.
    void setBounds(const CurlBounds& bounds);

    // Once, behind the options. False when libcurl gave no session; the transfer is of no use then.
    bool start();

    // Sends and receives what the network allows now; returns at once.
    void advance();

    // Waits until there is something to advance with, one turn at most.
    void waitForTraffic();

    // Nothing more will come.
    bool finished() const { return finished_; }
    // How a finished transfer has ended.
    CURLcode result() const { return result_; }

  private:
    CurlEasy easy_;
    CurlMulti multi_;
    CURLcode result_ = CURLE_OK;
    bool started_ = false;
    bool finished_ = false;
};

} // namespace tremor
