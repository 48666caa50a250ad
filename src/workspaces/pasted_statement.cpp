#include "workspaces/pasted_statement.h"

#include <algorithm>

namespace tremor {

bool fitsApostrophes(std::string_view text) {
    return pastedTextValue(text).has_value();
}

bool runPasted(Database& database, Log& log, const std::string& sql,
               std::initializer_list<std::string_view> typed, std::string_view loss) {
    std::string reason;
    if (!std::all_of(typed.begin(), typed.end(), fitsApostrophes))
        reason = "an apostrophe in a text";
    else if (database.slsExe(sql) != 0)
        reason = database.slGetError();
    else
        return true;
    log.addLogToList(std::string(loss) + ": " + reason);
    return false;
}

} // namespace tremor
