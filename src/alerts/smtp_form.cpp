#include "alerts/smtp_form.h"

#include "core/conversions.h"

namespace tremor {

SmtpForm settingsToForm(const AppSettings& settings) {
    SmtpForm form;
    form.server = settings.SMTPserver;
    form.username = settings.SMTPusername;
    form.password = settings.SMTPpassword;
    form.port = std::to_string(settings.SMTPport);
    form.reqSsl = settings.SMTPreqSSL != 0;
    form.fromName = settings.SMTPfromName;
    form.fromEmail = settings.SMTPfromEmail;
    form.to = settings.SMTPrecipient;
    form.magnitude = settings.MagToSend;
    return form;
}

void formToSettings(const SmtpForm& form, AppSettings& settings, const NumberLocale& locale,
                    ErrorReport& errors) {
    ProcedureTrace trace(errors, "Form - frmSettingsSMTP", "formToSettings");
    settings.SMTPserver = form.server;
    settings.SMTPusername = form.username;
    settings.SMTPpassword = form.password;
    trace.step([&] { settings.SMTPport = textToInteger(form.port, locale); });
    settings.SMTPreqSSL = form.reqSsl ? 1 : 0;
    settings.SMTPfromName = form.fromName;
    settings.SMTPfromEmail = form.fromEmail;
    settings.SMTPrecipient = form.to;
    settings.MagToSend = form.magnitude;
}

} // namespace tremor
