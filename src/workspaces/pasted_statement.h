#pragma once

#include "core/ports.h"
#include "database/database.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace tremor {

// False for a text that would end the apostrophes between which it is pasted into a statement. A
// doubled apostrophe stands for one.
bool fitsApostrophes(std::string_view text);

// Runs a statement that holds these typed texts between apostrophes. One that does not fit makes it
// fail before it runs. A failure shows no box; the log gets "<loss>: <reason>", for example
// "The search was not saved: 5 database is locked".
bool runPasted(Database& database, Log& log, const std::string& sql,
               std::initializer_list<std::string_view> typed, std::string_view loss);

} // namespace tremor
