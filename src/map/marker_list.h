#pragma once

#include "core/common_text.h"

#include <string>
#include <string_view>

namespace tremor {

// A list as the map pages take it: one text with an apostrophe in front of, between and behind the
// values, "'42.7'13.2'". Split at the apostrophe its first and last element are empty; without
// values it is a lone apostrophe.
//
// The form has no escape. An apostrophe inside a value would move everything behind it out of step
// with the other lists, so it is shown as the typographic one (U+2019).
class MarkerList {
  public:
    static constexpr char separator = '\'';

    MarkerList();
    void Add(std::string_view value);
    const std::string& text() const { return text_.GetStr(); }

    // The value as it stands in a list.
    static std::string listed(std::string_view value);

  private:
    StringBuilder text_;
};

} // namespace tremor
