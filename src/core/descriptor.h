#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tremor {

// An open file that is closed at the end of its block.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    // Writes all of the text. Gives the system's error number, 0 for none.
    int write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t written = ::write(number_, text.data(), text.size());
            if (written >= 0)
                text.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR)
                return errno;
        }
        return 0;
    }

    // Closes now; false when the system reports an error that it had kept back until then. An
    // interrupted call has closed, too (man 2 close).
    bool close() { return ::close(std::exchange(number_, -1)) == 0 || errno == EINTR; }

  private:
    int number_;
};

} // namespace tremor
