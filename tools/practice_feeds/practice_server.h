#pragma once

#include "practice_feeds/growing_catalogue.h"

#include <memory>
#include <optional>
#include <string>

namespace tremor::practice {

struct ServerOptions {
    int port = 0;           // 0: any free one
    std::string dataFolder; // holds ingv/… and geonames/…
    CatalogueOptions catalogue;
    std::string seisCompFolder;       // where events are written as SeisComP does; empty: nowhere
    std::string livelocFolder;        // where S-files are written; empty: nowhere
    std::optional<int> pagerlinkPort; // 0: any free one; nothing: no Pagerlink server
};

// Stands in for the remote services on 127.0.0.1. Beside the services it answers
//   /                                          200: the Internet can be reached
//   /practice/fault?kind=KIND[&count=N]        the next N requests, or all, meet the fault
//   /practice/add[?source=NAME][&age=MINUTES][&at=LATITUDE,LONGITUDE]
//                                              adds one event now, to INGV when no other source
//                                              is named; answers its line or the written file
//   /practice/relocate                         another solution for SeisComP's latest event
//   /practice/served[?source=NAME]             the whole current catalogue of a service
//   /practice/given[?source=NAME]              each line of the documents given without a fault
//   /practice/hold                             nothing changes by itself until /practice/go
//   /practice/last                             the last document given without a fault
//   /practice/log                              "GET target" of each request so far, one a line,
//                                              answered or not
//   /practice/pagerlink…                       see pagerlink_service.h
//   /practice/iside…                           see iside_site.h
//   /practice/geonames/fault?kind=KIND[&count=N]   a fault of GeoNames alone
//   /practice/telegram…                        see telegram_service.h
//   /practice/telegram/fault?kind=KIND[&count=N]   a fault of Telegram alone, which meets no other
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
