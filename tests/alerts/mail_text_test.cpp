#include "alerts/mail_text.h"
#include "core/error_report.h"
#include "support/mail_server.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::UnpackedMail;

std::string refusalOf(const std::string& list) {
    try {
        (void)parseRecipients(list);
    } catch (const RuntimeError& error) {
        return error.description();
    }
    return "taken";
}

std::string addressesOf(const std::string& list) {
    std::string text;
    for (const MailAddress& item : parseRecipients(list))
        text += "[" + item.name + "|" + item.address + "]";
    return text;
}

// What a mail program shows of a field.
std::string shown(const std::string& field, const std::string& value) {
    const UnpackedMail mail(field + ": " + value + "\r\n\r\n");
    EXPECT_EQ(mail.part("defects"), "");
    return mail.part(field);
}

TEST(ParseMailAddress, TakesABareAddressAndOneInBrackets) {
    EXPECT_EQ(addressesOf(" room@example.org "), "[|room@example.org]");
    EXPECT_EQ(addressesOf("<room@example.org>"), "[|room@example.org]");
    EXPECT_EQ(addressesOf("Control Room<room@example.org>"), "[Control Room|room@example.org]");
}

TEST(ParseMailAddress, TakesTheQuotesOffAName) {
    EXPECT_EQ(addressesOf(R"("Rossi, \"Gino\" <x>" <gino@example.org>)"),
              R"([Rossi, "Gino" <x>|gino@example.org])");
}

TEST(ParseMailAddress, ReadsNamesInUtf8AndInWindows1252) {
    EXPECT_EQ(addressesOf("Forl\xC3\xAC <a@b.it>"), "[Forl\xC3\xAC|a@b.it]");
    EXPECT_EQ(addressesOf("Forl\xEC <a@b.it>"), "[Forl\xC3\xAC|a@b.it]");
}

TEST(ParseMailAddress, MakesBlanksOfControlCharactersInAName) {
    EXPECT_EQ(parseMailAddress("A\r\nBcc: x@y.z <a@b.it>").name, "A  Bcc: x@y.z");
}

TEST(ParseMailAddress, RefusesAnAddressThatCouldEndItsLine) {
    EXPECT_EQ(refusalOf("a@b.it\r\nBcc: x@y.z"), "\"a@b.it  Bcc: x@y.z\" is no e-mail address.");
    EXPECT_EQ(refusalOf(std::string("a@b.it\0", 7)), "\"a@b.it \" is no e-mail address.");
    EXPECT_EQ(refusalOf("a@b.it> SIZE=1 <"), "\"a@b.it> SIZE=1 <\" is no e-mail address.");
    EXPECT_EQ(refusalOf("<>"), "\"\" is no e-mail address.");
    EXPECT_NE(refusalOf(std::string(255, 'a')), "taken");
}

TEST(ParseRecipients, SplitsAtCommasOutsideQuotes) {
    EXPECT_EQ(addressesOf("a@b.it,\"Rossi, G\" <g@b.it> , c@b.it"),
              "[|a@b.it][Rossi, G|g@b.it][|c@b.it]");
}

TEST(ParseRecipients, PassesOverEmptyItems) {
    EXPECT_EQ(addressesOf(",a@b.it, ,"), "[|a@b.it]");
}

TEST(ParseRecipients, RefusesAListWithoutAnAddress) {
    EXPECT_EQ(refusalOf(""), "There is no e-mail address to send to.");
    EXPECT_EQ(refusalOf(" , "), "There is no e-mail address to send to.");
}

TEST(HeaderText, LeavesPlainTextAlone) {
    EXPECT_EQ(headerText("NEW EVENT 2021-01-14 05:45:26"), "NEW EVENT 2021-01-14 05:45:26");
}

TEST(HeaderText, MakesBlanksOfControlCharacters) {
    EXPECT_EQ(headerText("a\r\nBcc: b\tc\x7F"), "a  Bcc: b c ");
}

TEST(HeaderText, EncodesWhatIsNotAscii) {
    EXPECT_EQ(headerText("\xC3\xA8"), "=?UTF-8?B?w6g=?=");
    EXPECT_EQ(shown("subject", headerText("Forl\xEC")), "Forl\xC3\xAC");
}

TEST(HeaderText, EncodesTextThatLooksEncoded) {
    EXPECT_EQ(shown("subject", headerText("=?UTF-8?B?w6g=?=")), "=?UTF-8?B?w6g=?=");
}

TEST(HeaderText, FoldsLongTextWithoutCuttingACharacter) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "x\xE2\x82\xAC";
    const std::string folded = headerText(text);
    for (std::size_t from = 0; from < folded.size();) {
        const std::size_t end = std::min(folded.find("\r\n", from), folded.size());
        EXPECT_LE(end - from, 76U);
        from = end + 2;
    }
    EXPECT_EQ(shown("subject", folded), text);
    EXPECT_EQ(shown("subject", headerText(std::string(1000, 'y'))), std::string(1000, 'y'));
}

TEST(AddressField, QuotesNamesThatHoldMoreThanWords) {
    EXPECT_EQ(addressField({{"Control Room", "a@b.it"}}), "Control Room <a@b.it>");
    EXPECT_EQ(addressField({{R"(Rossi, "Gino")", "a@b.it"}}), R"("Rossi, \"Gino\"" <a@b.it>)");
    EXPECT_EQ(addressField({{"", "a@b.it"}}), "a@b.it");
}

TEST(AddressField, IsReadBackByAMailProgram) {
    const std::string field =
        addressField({{"Citt\xC3\xA0 d'Arno", "a@b.it"}, {"Rossi, G.", "g@b.it"}, {"", "c@b.it"}});
    EXPECT_EQ(shown("to", field), "Citt\xC3\xA0 d'Arno <a@b.it>, \"Rossi, G.\" <g@b.it>, c@b.it");
}

TEST(MailDate, IsWrittenInUniversalTime) {
    using namespace std::chrono;
    const sys_seconds time = sys_days(2014y / March / 7) + 9h + 5min + 12s;
    EXPECT_EQ(mailDate(time), "Fri, 07 Mar 2014 09:05:12 +0000");
}

TEST(BodyText, DecodesEveryLineByItself) {
    EXPECT_EQ(bodyText("Forl\xEC = Km 3\r\nForl\xC3\xAC = Km 4\r\n\r\nend"),
              "Forl\xC3\xAC = Km 3\r\nForl\xC3\xAC = Km 4\r\n\r\nend");
    EXPECT_EQ(bodyText("one\r\n"), "one\r\n");
    EXPECT_EQ(bodyText(""), "");
}

} // namespace
} // namespace tremor
