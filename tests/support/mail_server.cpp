#include "support/mail_server.h"

#include "support/texts.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace tremor::testing {

namespace {

constexpr int startMilliseconds = 20000;

// Starts a program with its output in `output` (-1: this process's own). Its id.
pid_t run(std::vector<std::string> words, int output) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t id = ::fork();
    if (id == 0) {
        if (output >= 0)
            ::dup2(output, STDOUT_FILENO);
        ::execv(arguments.front(), arguments.data());
        ::_exit(127);
    }
    return id;
}

// The first line that comes through a pipe in time.
std::string firstLine(int pipe) {
    std::string line;
    pollfd wait{pipe, POLLIN, 0};
    char byte = 0;
    while (::poll(&wait, 1, startMilliseconds) > 0 && ::read(pipe, &byte, 1) == 1 && byte != '\n')
        line += byte;
    return line;
}

} // namespace

MailServer::MailServer(Encryption encryption) {
    std::vector<std::string> words = {
        TREMOR_PRACTICE_MAIL, folder_.file("mails"),          "--port", "0",
        "--certificate",      certificate_.certificateFile(), "--key",  certificate_.keyFile()};
    if (encryption == Encryption::Implicit)
        words.emplace_back("--implicit-tls");
    start(words);
}

void MailServer::start(const std::vector<std::string>& words) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    process_ = run(words, pipe[1]);
    ::close(pipe[1]);
    output_ = pipe[0];
    const std::string line = firstLine(output_);
    ASSERT_EQ(line.substr(0, 5), "port ") << "the mail server has not started";
    port_ = std::stoi(line.substr(5));
}

MailServer::~MailServer() {
    if (output_ >= 0)
        ::close(output_);
    end();
}

void MailServer::end() {
    if (process_ <= 0)
        return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
}

void MailServer::setFaults(const std::string& lines) const {
    std::ofstream(folder_.file("mails/faults")) << lines;
}

int MailServer::mailCount() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.file("mails")))
        count += entry.path().extension() == ".eml" ? 1 : 0;
    return count;
}

void MailServer::pause() const {
    ::kill(process_, SIGSTOP);
}

void MailServer::resume() const {
    ::kill(process_, SIGCONT);
}

std::vector<std::string> MailServer::envelope(int number) const {
    std::ifstream stream(folder_.file(fmt::format("mails/{:04}.txt", number)));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string MailServer::raw(int number) const {
    return contentOf(folder_.file(fmt::format("mails/{:04}.eml", number)));
}

UnpackedMail::UnpackedMail(const std::string& mail) {
    std::ofstream(folder_.file("raw.eml"), std::ios::binary) << mail;
    const pid_t process = run({TREMOR_PYTHON, TREMOR_TESTS "/support/unpack_mail.py",
                               folder_.file("raw.eml"), folder_.path()},
                              -1);
    int status = -1;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0) << mail;
}

std::string UnpackedMail::part(const std::string& name) const {
    return contentOf(folder_.file(name));
}

} // namespace tremor::testing
