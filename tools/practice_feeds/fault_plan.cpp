#include "practice_feeds/fault_plan.h"

#include <array>
#include <utility>

namespace tremor::practice {

std::optional<Fault> faultFromText(std::string_view kind) {
    using Entry = std::pair<std::string_view, Fault>;
    constexpr std::array<Entry, 8> kinds{{{"none", Fault::None},
                                          {"404", Fault::Status404},
                                          {"204", Fault::Status204},
                                          {"500", Fault::Status500},
                                          {"cut", Fault::Cut},
                                          {"stall", Fault::Stall},
                                          {"garbage", Fault::Garbage},
                                          {"slow", Fault::Slow}}};
    for (const auto& [text, fault] : kinds)
        if (text == kind)
            return fault;
    return std::nullopt;
}

void FaultPlan::set(Fault fault, int count) {
    const std::lock_guard lock(mutex_);
    fault_ = fault;
    left_ = count;
}

Fault FaultPlan::take() {
    const std::lock_guard lock(mutex_);
    const Fault fault = fault_;
    if (left_ > 0 && --left_ == 0)
        fault_ = Fault::None;
    return fault;
}

} // namespace tremor::practice
