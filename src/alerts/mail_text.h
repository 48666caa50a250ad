#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

// The texts of a mail's head (RFC 5322) and body. Everything that goes in is bytes as settings and
// database hold them, UTF-8 or Windows-1252; everything that comes out is fit for a mail.
namespace tremor {

struct MailAddress {
    std::string name;    // UTF-8, without quotes; may be empty
    std::string address; // "operator@example.org"
};

// One address: "operator@example.org" or "Control Room <operator@example.org>"; the name may stand
// in double quotes. Control characters in the name become blanks. An address that is empty, longer
// than 254 bytes or that holds a control character or an angle bracket raises error 1000 with a
// text for the operator.
MailAddress parseMailAddress(std::string_view text);

// Addresses separated by commas; commas inside double quotes belong to a name. Empty items are
// passed over. Error 1000 as above, and for a list without an address.
std::vector<MailAddress> parseRecipients(std::string_view list);

// An unstructured field, such as the subject: control characters become blanks, and what is not
// plain ASCII becomes encoded words (RFC 2047), "=?UTF-8?B?w6g=?=", folded where the line gets
// long.
std::string headerText(std::string_view text);

// An address field: "Control Room <operator@example.org>,\r\n second@example.org".
std::string addressField(const std::vector<MailAddress>& addresses);

// "Fri, 07 Mar 2014 09:05:12 +0000".
std::string mailDate(std::chrono::sys_seconds time);

// The body in UTF-8. Each line is decoded by itself: town names come from imports of either kind.
std::string bodyText(std::string_view text);

} // namespace tremor
