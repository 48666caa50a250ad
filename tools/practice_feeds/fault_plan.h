#pragma once

#include <mutex>
#include <optional>
#include <string_view>

namespace tremor::practice {

// What a service does in place of its good answer.
enum class Fault {
    None,
    Status404,
    Status204,
    Status500,
    Cut,     // announces the whole body, sends half of it and closes
    Stall,   // sends half of the body and then nothing more
    Garbage, // status 200 with bytes that are no document and hold no line feed
    Slow,    // one byte a second
};

// "404", "204", "500", "cut", "stall", "garbage", "slow", "none"; nothing for another word.
std::optional<Fault> faultFromText(std::string_view kind);

// Which fault the next requests meet. Switched from one thread while others answer.
class FaultPlan {
  public:
    // For the next `count` requests, or for all from now on when count is 0.
    void set(Fault fault, int count);

    // The fault of the request that is being answered now.
    Fault take();

  private:
    std::mutex mutex_;
    Fault fault_ = Fault::None;
    int left_ = 0; // 0: without an end
};

} // namespace tremor::practice
