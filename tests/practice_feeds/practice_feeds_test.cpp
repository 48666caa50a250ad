#include "support/fakes.h"
#include "support/texts.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

// The program itself, as scripts start it.
namespace tremor::testing {
namespace {

using namespace std::chrono_literals;

class PracticeFeedsProgram : public ::testing::Test {
  protected:
    ~PracticeFeedsProgram() override {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }

    void start(std::vector<std::string> words) {
        words.insert(words.begin(), TREMOR_PRACTICE_FEEDS);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, outputFile.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
        ASSERT_EQ(posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ),
                  0);
        posix_spawn_file_actions_destroy(&actions);
    }
    std::string output() const { return contentOf(outputFile); }
    // The exit code; -1 when it did not end in time or by a signal.
    int waitForExit() {
        for (int i = 0; i < 6000; ++i) {
            int status = 0;
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                pid_ = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            std::this_thread::sleep_for(10ms);
        }
        return -1;
    }
    int portFromOutput() const {
        const std::string begin = "practice feeds on http://127.0.0.1:";
        for (int i = 0; i < 6000 && !output().ends_with("\n"); ++i)
            std::this_thread::sleep_for(10ms);
        EXPECT_TRUE(output().starts_with(begin)) << output();
        return std::atoi(output().substr(begin.size()).c_str());
    }

    TemporaryFolder folder;
    std::string outputFile = folder.file("output");
    pid_t pid_ = -1;
};

TEST_F(PracticeFeedsProgram, PrintsItsAddressWritesTheHostsFileAndEndsOnSigterm) {
    const std::string hostsIni = folder.file("hosts.ini");
    start({"--data", TREMOR_TEST_DATA, "--hosts-ini", hostsIni});
    const int port = portFromOutput();
    ASSERT_GT(port, 0);
    EXPECT_EQ(output(), "practice feeds on http://127.0.0.1:" + std::to_string(port) + "\n");
    EXPECT_TRUE(contentOf(hostsIni).starts_with("[HOSTS]\n"));
    EXPECT_NE(contentOf(hostsIni).find("\nIngv=http://127.0.0.1:" + std::to_string(port) + "\n"),
              std::string::npos);
    const auto answer =
        httplib::Client("127.0.0.1", port).Get("/fdsnws/event/1/query?format=text&limit=5");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    ::kill(pid_, SIGTERM);
    EXPECT_EQ(waitForExit(), 0);
}

TEST_F(PracticeFeedsProgram, EndsOnSigintWhileARequestIsStalled) {
    start({"--data", TREMOR_TEST_DATA});
    const int port = portFromOutput();
    httplib::Client control("127.0.0.1", port);
    ASSERT_TRUE(control.Get("/practice/fault?kind=stall"));
    std::thread request([port] {
        httplib::Client client("127.0.0.1", port);
        client.set_read_timeout(120s); // its own limit would end the stall
        client.Get("/fdsnws/event/1/query?format=text");
    });
    for (auto log = control.Get("/practice/log"); log && log->body.empty();
         log = control.Get("/practice/log"))
        std::this_thread::sleep_for(10ms);
    ::kill(pid_, SIGINT);
    EXPECT_EQ(waitForExit(), 0);
    request.join();
}

TEST_F(PracticeFeedsProgram, SaysWhatIsWrongWithItsOptions) {
    start({"--port"});
    EXPECT_EQ(waitForExit(), 2);
    EXPECT_EQ(output(), "practice_feeds: --port wants a value; see --help\n");
    start({"--data", folder.path()});
    EXPECT_EQ(waitForExit(), 1);
    EXPECT_TRUE(output().starts_with("practice_feeds: cannot read " + folder.path())) << output();
    start({"--data", TREMOR_TEST_DATA, "--hosts-ini", folder.file("missing/hosts.ini")});
    EXPECT_EQ(waitForExit(), 1);
    EXPECT_TRUE(output().starts_with("practice_feeds: cannot write ")) << output();
}

TEST_F(PracticeFeedsProgram, TellsItsOptions) {
    start({"--help"});
    EXPECT_EQ(waitForExit(), 0);
    EXPECT_TRUE(output().starts_with("practice_feeds --data FOLDER")) << output();
}

} // namespace
} // namespace tremor::testing
