#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/settings.h"

#include <cstdint>
#include <string>

namespace tremor {

// What stands in the controls of the window of the e-mail settings, UTF-8.
struct SmtpForm {
    std::string server;
    std::string username;
    std::string password;
    std::string port; // a whole number of 16 bits
    bool reqSsl = false;
    std::string fromName;
    std::string fromEmail;
    std::string to; // addresses separated by commas
    std::int32_t magnitude = 0;
};

SmtpForm settingsToForm(const AppSettings& settings);

// Stores every field. A port that is no number (error 13) or beyond 16 bits (error 6) is reported;
// after Ignore the port stays as it was and the other fields are stored.
void formToSettings(const SmtpForm& form, AppSettings& settings, const NumberLocale& locale,
                    ErrorReport& errors);

} // namespace tremor
