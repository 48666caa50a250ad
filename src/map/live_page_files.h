#pragma once

#include "map/live_page.h"

namespace tremor {

// The files of the live page from the program's own resources. Read anew at each call: the base map
// is large, and the page is seldom written.
LivePageFiles livePageFiles();

} // namespace tremor
