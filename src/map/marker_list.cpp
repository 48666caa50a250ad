#include "map/marker_list.h"

namespace tremor {

namespace {

constexpr std::string_view separatorText(&MarkerList::separator, 1);
constexpr std::string_view typographicApostrophe = "\xE2\x80\x99";

} // namespace

MarkerList::MarkerList() {
    text_.Add(separatorText);
}

void MarkerList::Add(std::string_view value) {
    if (value.find(separator) == std::string_view::npos)
        text_.Add(value);
    else
        text_.Add(listed(value));
    text_.Add(separatorText);
}

std::string MarkerList::listed(std::string_view value) {
    return replaceAll(value, separatorText, typographicApostrophe);
}

} // namespace tremor
