#pragma once

#include "core/ports.h"
#include "core/session.h"

#include <cstdint>
#include <string>

// Sending mail over SMTP (RFC 5321) with libcurl.
namespace tremor {

// A plain-text mail. Texts are UTF-8 or Windows-1252.
struct OutgoingMail {
    std::string to; // addresses separated by commas
    std::string subject;
    std::string from;       // "Control Room<operator@example.org>"
    std::string body;       // lines end in CR LF
    std::string attachment; // path of a file; empty or blank: none
};

struct SmtpAccount {
    std::string server;
    std::int32_t port = 0;
    std::string user; // empty: no log-in
    std::string password;
};

class Mailer {
  public:
    virtual ~Mailer() = default;

    // Sends the mail to all its recipients or to none, once. The empty text when the server has
    // taken it, else what went wrong, for the operator. Nothing is raised.
    virtual std::string sendMailCDO(const OutgoingMail& mail, const SmtpAccount& account) = 0;
};

// Limits of a sending. They bound every wait on a server.
struct SmtpLimits {
    int connectSeconds = 30;              // connection, encryption, greeting and log-in
    int answerSeconds = 60;               // each answer of the server
    int totalSeconds = 120;               // the whole sending
    int implicitTlsPort = 465;            // encrypted from the first byte (RFC 8314)
    std::string certificateAuthorityFile; // additional authority; empty: the system's only
};

// The connection is always encrypted: from the first byte on the port of implicit TLS, by STARTTLS
// on every other one. A server that offers no STARTTLS, or whose certificate does not hold for its
// name, gets neither password nor mail. Log-in is PLAIN or LOGIN; a server that offers none is used
// without. The windows stay alive meanwhile, and ticks are held: a poll inside the sending would
// use up its time. A closing program ends it.
class SmtpMailer : public Mailer {
  public:
    SmtpMailer(Clock& clock, Session& session, SmtpLimits limits);

    std::string sendMailCDO(const OutgoingMail& mail, const SmtpAccount& account) override;

  private:
    Clock& clock_;
    Session& session_;
    SmtpLimits limits_;
};

} // namespace tremor
