#pragma once

#include <signal.h>
#include <sys/resource.h>

namespace tremor::testing {

// Lets no file grow beyond a size: a failure in the middle of writing, for root as well.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        ::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

} // namespace tremor::testing
