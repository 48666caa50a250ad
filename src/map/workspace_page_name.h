#pragma once

#include <string_view>

namespace tremor {

// True when the map page of a workspace of this name may be written into the program's folder under
// that name. The operator names workspaces freely, so a name may lead out of the folder ("../x") or
// to another file: it must be one path component, none of the program's own names ("settings.ini",
// "logs"), and what stands there already must be an earlier map page.
bool mayNameWorkspacePage(std::string_view applicationPath, std::string_view name);

} // namespace tremor
