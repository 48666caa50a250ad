#pragma once

#include "core/descriptor.h"

#include <functional>
#include <string>

namespace tremor {

// The name for a copy of a catalogue: its path + "_backup", or when that is taken, + "_backup1",
// "_backup2" and so on.
std::string freeBackupName(const std::string& path);

// Copies an open file under a new name, with its permissions, replacing a file of that name. The
// bytes go to `target` + ".incomplete", are flushed to the disk, read back and compared, and only
// then get their name, which is flushed as well: `target` is whole or not there at any time.
// `afterEachPiece` is called about every megabyte. Errors as raiseWriteError; nothing new is left
// behind then.
void copyWholeFile(const Descriptor& source, const std::string& target,
                   const std::function<void()>& afterEachPiece);

} // namespace tremor
