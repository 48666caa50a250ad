#pragma once

#include "practice_feeds/ingv_catalogue.h"

#include <functional>
#include <memory>
#include <string>

namespace tremor::practice {

struct ServerOptions {
    int port = 0;           // 0: any free one
    std::string dataFolder; // holds ingv/…
    CatalogueOptions catalogue;
};

// Stands in for the remote services on 127.0.0.1. Beside the services it answers
//   /                                          200: the Internet can be reached
//   /practice/fault?kind=KIND[&count=N]        the next N requests, or all, meet the fault
//   /practice/add                              adds one event now; answers its line
//   /practice/served                           the whole current catalogue
//   /practice/last                             the last document given without a fault
//   /practice/log                              "GET target" of each request so far, one a line
// by GET and POST alike. Control requests meet no faults and stand in no log.
class PracticeServer {
  public:
    // Reads the documents, binds the port and answers from then on, on threads of its own. Throws
    // std::runtime_error when a document or the port cannot be had.
    explicit PracticeServer(const ServerOptions& options);
    // Ends at once, also while a request is stalled by a fault.
    ~PracticeServer();
    PracticeServer(const PracticeServer&) = delete;
    PracticeServer& operator=(const PracticeServer&) = delete;

    int port() const;
    std::string url() const; // "http://127.0.0.1:PORT"

    // The text of a hosts.ini that points every service at this server.
    std::string hostsIni() const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace tremor::practice
