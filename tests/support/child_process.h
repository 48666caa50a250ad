#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace tremor::testing {

// A copy of this process that does something, tells that it is done, and then waits until it is
// killed at the end of the block.
class ChildProcess {
  public:
    template <class Work>
    explicit ChildProcess(Work&& work) {
        std::array<int, 2> pipe{};
        EXPECT_EQ(::pipe(pipe.data()), 0);
        id_ = ::fork();
        if (id_ == 0) {
            work();
            if (::write(pipe[1], "x", 1) == 1)
                ::pause();
            ::_exit(1);
        }
        ::close(pipe[1]);
        char done = 0;
        EXPECT_EQ(::read(pipe[0], &done, 1), 1) << "the child has failed";
        ::close(pipe[0]);
    }
    ~ChildProcess() { end(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t id() const { return id_; }
    void end() {
        if (id_ <= 0)
            return;
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
        id_ = 0;
    }

  private:
    pid_t id_ = 0;
};

} // namespace tremor::testing
