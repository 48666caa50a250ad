#pragma once

#include "core/number_locale.h"
#include "core/ports.h"
#include "ingest/import_rules.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Events from files of the form that CsvExport writes, chosen by the operator or fetched from the
// ISIDE site.
namespace tremor {

// The events of a file. Every line that a line feed ends is an element: six fields separated by
// ";", further ones ignored. A line that begins with "#" is a comment, without an element. A line
// whose first field has one character or none is a hole, an element of empty texts. A line with a
// time but fewer than six fields is incomplete and has no element either, because a hole in its
// place would hide the events behind it from the duplicate check. What follows the last line feed
// is no line, and neither is a last line that holds a carriage return alone, the end of an export.
//
// Bytes are taken as they are: the carriage return of a foreign file belongs to the source, a byte
// order mark to the first line. The magnitude keeps its digits, "." and "," only: "M 4,5" gives
// "4,5".
class CsvEvents {
  public:
    // The text outlives this object.
    explicit CsvEvents(std::string_view text);

    std::size_t lines() const { return lines_; }
    std::size_t elements() const { return elements_; }
    std::size_t incomplete() const { return incomplete_; }

    // Hands over the elements in the order of the file until the visitor gives false. A magnitude
    // that is not as in the file is valid until the visitor returns; the other texts are parts of
    // the file.
    void forEach(const RecordVisitor& visit) const;

  private:
    std::string_view text_;
    std::size_t lines_ = 0;
    std::size_t elements_ = 0;
    std::size_t incomplete_ = 0;
};

class CsvImport {
  public:
    CsvImport(FeedContext context, Prompts& prompts, const NumberLocale& locale);

    // Asks for a file and imports it. No source starts while the chooser is open.
    void mnu_ImportCSV_Click();

    // Imports the file CsvFileName: the download from ISIDE (1), whose events are compared with all
    // rows but EMSC's, or a file of the operator's (0), whose events are compared with all. Every
    // 25th import compacts the catalogue. When lines were incomplete, the operator meets error 9
    // once for the file, and the log tells how many there were.
    void readCSV(std::int32_t isideFlag);

    std::string CsvFileName;
    std::int16_t CsvImportCount = 0; // finished imports since the last compaction

  private:
    void importEvents(const CsvEvents& events, FeedReader reader, ProcedureTrace& trace);
    void compactWhenDue();
    void logImport(const ImportOutcome& outcome);

    FeedContext context_;
    Prompts& prompts_;
    NumberLocale locale_;
};

} // namespace tremor
