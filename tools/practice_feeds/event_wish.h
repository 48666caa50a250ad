#pragma once

#include <chrono>
#include <optional>

namespace tremor::practice {

struct Epicentre {
    double latitude = 0;  // degrees
    double longitude = 0; // degrees
};

// An event that a control request asks for. What it leaves open is drawn.
struct EventWish {
    // Its age when it comes out; nothing: a new one, the newest of all.
    std::optional<std::chrono::minutes> age = {};
    std::optional<Epicentre> epicentre = {};
};

} // namespace tremor::practice
