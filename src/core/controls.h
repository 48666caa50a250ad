#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tremor {

// What the logic may do to the controls of the main window.
class PanelControls {
  public:
    virtual ~PanelControls() = default;

    // Applies a state of the table below (1 no Internet, 2 no usable database, 3 Internet back,
    // 4 database opened). Any other value does nothing.
    virtual void controlliForm(std::int32_t state) = 0;

    virtual void setCaption(std::string_view caption) = 0;
};

struct ControlsChange {
    std::span<const std::string_view> names; // object names of the controls
    bool enabled = false;
};

// The controls that a state touches and the value that they get; no names for an unknown state.
ControlsChange controlsChange(std::int32_t state);

} // namespace tremor
