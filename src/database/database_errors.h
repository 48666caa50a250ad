#pragma once

#include "database/database.h"

namespace tremor {

// True for errors of one row alone (a constraint, a value of the wrong type or too long). After any
// other one SQLite may have ended the transaction by itself.
bool refusesTheRowOnly(int error);

// Nothing for 0. For any other result of a call of `database` a runtime error with SQLite's own
// text: 70 when the file is locked or may not be written, 61 when the disk is full, else 1000.
void raiseUnlessDone(const Database& database, int result);

} // namespace tremor
