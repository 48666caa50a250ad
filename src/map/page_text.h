#pragma once

#include "core/common_text.h"

#include <string>
#include <string_view>

namespace tremor {

// The text of a page, a style sheet or a KML file while it grows. Every line ends in CR LF.
class PageText {
  public:
    // As it stands, with line ends of its own.
    void add(std::string_view text) { text_.Add(text); }

    void line(std::string_view text) {
        text_.Add(text);
        text_.Add("\r\n");
    }

    // A block in which each line, the last one too, ends in "\n".
    void lines(std::string_view block) { text_.Add(replaceAll(block, "\n", "\r\n")); }

    const std::string& text() const { return text_.GetStr(); }

  private:
    StringBuilder text_;
};

} // namespace tremor
