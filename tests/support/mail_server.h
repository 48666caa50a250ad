#pragma once

#include "support/fakes.h"
#include "support/test_certificate.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace tremor::testing {

// tools/practice_mail on a free port of "localhost", with log-in "operator" and "secret" and the
// certificate of the test. It ends with the object.
class MailServer {
  public:
    enum class Encryption { StartTls, Implicit };

    explicit MailServer(Encryption encryption = Encryption::StartTls);
    ~MailServer();
    MailServer(const MailServer&) = delete;
    MailServer& operator=(const MailServer&) = delete;

    int port() const { return port_; }
    const std::string& certificateFile() const { return certificate_.certificateFile(); }

    // Lines such as "rcpt refuse", for connections from now on; see practice_mail --help.
    void setFaults(const std::string& lines) const;

    // Stands still, as an overloaded machine does: connections are made, and nothing is answered.
    void pause() const;
    void resume() const;
    void end(); // nobody listens any more

    int mailCount() const;
    // "from ...", "to ..." for each recipient, "user ...", "tls yes" of a mail; 1 is the first.
    std::vector<std::string> envelope(int number = 1) const;
    // A mail as it came over the wire.
    std::string raw(int number = 1) const;

  private:
    void start(const std::vector<std::string>& words);

    TemporaryFolder folder_;
    TestCertificate certificate_{folder_.path()};
    pid_t process_ = -1;
    int output_ = -1; // open while the server writes to it
    int port_ = 0;
};

// A mail as a mail program shows it.
class UnpackedMail {
  public:
    explicit UnpackedMail(const std::string& mail);

    // "subject", "text", "attachment" and so on: see unpack_mail.py. Empty when there is none.
    std::string part(const std::string& name) const;

  private:
    TemporaryFolder folder_;
};

} // namespace tremor::testing
