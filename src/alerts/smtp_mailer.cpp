#include "alerts/smtp_mailer.h"

#include "alerts/mail_text.h"
#include "core/common_text.h"
#include "core/curl_transfer.h"
#include "core/error_report.h"
#include "core/files.h"
#include "core/flag_scope.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor {

namespace {

constexpr std::uint64_t largestAttachment = 10ULL * 1024 * 1024;

using CurlMime = std::unique_ptr<curl_mime, CurlRelease<curl_mime_free>>;

[[noreturn]] void fail(std::string description) {
    throw RuntimeError(ErrorNumber::UserDefined, std::move(description));
}

void require(CURLcode result) {
    if (result != CURLE_OK)
        fail(curl_easy_strerror(result));
}

void append(CurlHeaders& list, const std::string& line) {
    curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr)
        throw std::bad_alloc();
    (void)list.release();
    list.reset(longer);
}

std::string serverUrl(const SmtpAccount& account, const SmtpLimits& limits) {
    const CurlUrl url(curl_url());
    if (!url)
        throw std::bad_alloc();
    const auto set = [&](CURLUPart part, const std::string& text) {
        const CURLUcode result = curl_url_set(url.get(), part, text.c_str(), 0);
        if (result != CURLUE_OK)
            fail(fmt::format("Server \"{}\", port {}: {}", account.server, account.port,
                             curl_url_strerror(result)));
    };
    set(CURLUPART_SCHEME, account.port == limits.implicitTlsPort ? "smtps" : "smtp");
    set(CURLUPART_HOST, std::string(trim(account.server)));
    set(CURLUPART_PORT, std::to_string(account.port));
    char* text = nullptr;
    if (curl_url_get(url.get(), CURLUPART_URL, &text, 0) != CURLUE_OK)
        throw std::bad_alloc();
    return CurlText(text).get();
}

// "<time.random@domain of the sender>".
std::string messageId(const MailAddress& from, std::chrono::sys_seconds now) {
    constexpr std::string_view domainCharacters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-";
    std::string domain = from.address.substr(from.address.rfind('@') + 1);
    if (domain.empty() || domain.find_first_not_of(domainCharacters) != std::string::npos)
        domain = "localhost";
    std::random_device random;
    return fmt::format("<{}.{:08x}{:08x}@{}>", now.time_since_epoch().count(), random(), random(),
                       domain);
}

std::string attachmentBytes(const std::string& path) {
    try {
        return readWholeFile(path, largestAttachment);
    } catch (const RuntimeError& error) {
        fail(fmt::format("{}: {}", error.description(), path));
    }
}

// One mail on its way.
class SmtpTransfer {
  public:
    SmtpTransfer(const OutgoingMail& mail, const SmtpAccount& account, const SmtpLimits& limits) {
        if (transfer_.easy() == nullptr)
            throw std::bad_alloc();
        setServer(account, limits);
        watchSockets();
        setEnvelopeAndHead(mail);
        setContent(mail);
        if (!transfer_.start())
            throw std::bad_alloc();
    }

    ~SmtpTransfer() { hangUp(); }
    SmtpTransfer(const SmtpTransfer&) = delete;
    SmtpTransfer& operator=(const SmtpTransfer&) = delete;

    bool finished() const { return transfer_.finished(); }

    void turn() {
        transfer_.advance();
        if (!transfer_.finished())
            transfer_.waitForTraffic();
    }

    // The empty text for a mail that was taken.
    std::string errorText() const {
        if (transfer_.result() == CURLE_OK)
            return {};
        return errorText_.front() != '\0' ? errorText_.data()
                                          : curl_easy_strerror(transfer_.result());
    }

  private:
    void setServer(const SmtpAccount& account, const SmtpLimits& limits) {
        CURL* easy = transfer_.easy();
        require(curl_easy_setopt(easy, CURLOPT_URL, serverUrl(account, limits).c_str()));
        require(curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "smtp,smtps"));
        require(curl_easy_setopt(easy, CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL)));
        transfer_.setBounds(
            {limits.connectSeconds, limits.totalSeconds, limits.certificateAuthorityFile});
        require(curl_easy_setopt(easy, CURLOPT_SERVER_RESPONSE_TIMEOUT,
                                 static_cast<long>(limits.answerSeconds)));
        require(curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText_.data()));
        if (account.user.empty())
            return;
        require(curl_easy_setopt(easy, CURLOPT_USERNAME, account.user.c_str()));
        require(curl_easy_setopt(easy, CURLOPT_PASSWORD, account.password.c_str()));
        require(curl_easy_setopt(easy, CURLOPT_LOGIN_OPTIONS, "AUTH=PLAIN;AUTH=LOGIN"));
    }

    void setEnvelopeAndHead(const OutgoingMail& mail) {
        const MailAddress from = parseMailAddress(mail.from);
        const std::vector<MailAddress> recipients = parseRecipients(mail.to);
        for (const MailAddress& recipient : recipients)
            append(recipients_, recipient.address);
        const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
        append(head_, "Date: " + mailDate(now));
        append(head_, "From: " + addressField({from}));
        append(head_, "To: " + addressField(recipients));
        append(head_, "Subject: " + headerText(mail.subject));
        append(head_, "Message-ID: " + messageId(from, now));

        CURL* easy = transfer_.easy();
        require(curl_easy_setopt(easy, CURLOPT_MAIL_FROM, from.address.c_str()));
        require(curl_easy_setopt(easy, CURLOPT_MAIL_RCPT, recipients_.get()));
        require(curl_easy_setopt(easy, CURLOPT_HTTPHEADER, head_.get()));
    }

    void setContent(const OutgoingMail& mail) {
        content_.reset(curl_mime_init(transfer_.easy()));
        if (!content_)
            throw std::bad_alloc();
        curl_mimepart* const text = curl_mime_addpart(content_.get());
        const std::string body = bodyText(mail.body);
        require(curl_mime_data(text, body.data(), body.size()));
        require(curl_mime_type(text, "text/plain; charset=UTF-8"));
        require(curl_mime_encoder(text, "quoted-printable"));
        if (!trim(mail.attachment).empty())
            attach(mail.attachment);
        require(curl_easy_setopt(transfer_.easy(), CURLOPT_MIMEPOST, content_.get()));
    }

    void attach(const std::string& path) {
        const std::string bytes = attachmentBytes(path);
        curl_mimepart* const file = curl_mime_addpart(content_.get());
        require(curl_mime_data(file, bytes.data(), bytes.size()));
        require(curl_mime_filename(file, lastPathComponent(path).c_str())); // its type follows
        require(curl_mime_encoder(file, "base64"));
    }

    // libcurl says QUIT when it lets a connection go, and would hold the window until the server
    // has answered. Nobody needs that answer.
    void hangUp() const {
        for (const curl_socket_t socket : sockets_)
            ::shutdown(socket, SHUT_RD);
    }

    // A refusal makes libcurl say QUIT in the middle of a turn; only its trace tells of it.
    static int onTrace(CURL* /*easy*/, curl_infotype type, char* data, std::size_t size,
                       void* self) {
        if (type == CURLINFO_HEADER_OUT && std::string_view(data, size) == "QUIT\r\n")
            static_cast<SmtpTransfer*>(self)->hangUp();
        return 0;
    }

    void watchSockets() {
        CURL* easy = transfer_.easy();
        require(curl_easy_setopt(easy, CURLOPT_VERBOSE, 1L));
        require(curl_easy_setopt(easy, CURLOPT_DEBUGFUNCTION, onTrace));
        require(curl_easy_setopt(easy, CURLOPT_DEBUGDATA, this));
        require(curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, onOpen));
        require(curl_easy_setopt(easy, CURLOPT_SOCKOPTDATA, this));
        require(curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, onClose));
        require(curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this));
    }

    static int onOpen(void* self, curl_socket_t socket, curlsocktype /*purpose*/) {
        try {
            static_cast<SmtpTransfer*>(self)->sockets_.push_back(socket);
        } catch (const std::exception&) {
            return CURL_SOCKOPT_ERROR; // nothing may be thrown through libcurl
        }
        return CURL_SOCKOPT_OK;
    }

    static int onClose(void* self, curl_socket_t socket) {
        std::erase(static_cast<SmtpTransfer*>(self)->sockets_, socket);
        return ::close(socket);
    }

    std::array<char, CURL_ERROR_SIZE> errorText_{};
    std::vector<curl_socket_t> sockets_; // open ones
    CurlHeaders recipients_;
    CurlHeaders head_;
    CurlMime content_;
    CurlTransfer transfer_; // ends before what it reads from
};

} // namespace

SmtpMailer::SmtpMailer(Clock& clock, Session& session, SmtpLimits limits)
    : clock_(clock), session_(session), limits_(std::move(limits)) {}

std::string SmtpMailer::sendMailCDO(const OutgoingMail& mail, const SmtpAccount& account) {
    const FlagScope held(session_.TicksHeld);
    try {
        SmtpTransfer transfer(mail, account, limits_);
        for (;;) {
            if (session_.waitsMustEnd())
                return "The mail was not sent: the program is closing.";
            transfer.turn();
            if (transfer.finished())
                return transfer.errorText();
            clock_.pump();
        }
    } catch (const std::bad_alloc&) {
        return std::string(errorDescription(ErrorNumber::OutOfMemory));
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace tremor
