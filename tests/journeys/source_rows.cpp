#include "journeys/source_rows.h"

#include <algorithm>
#include <iterator>
#include <locale>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace tremor::journeys {
namespace {

// The text between the two, behind `from` in the document.
std::string between(const std::string& document, const std::string& begin, const std::string& end,
                    std::size_t from = 0) {
    const std::size_t start = document.find(begin, from);
    const std::size_t stop =
        start == std::string::npos ? start : document.find(end, start + begin.size());
    if (stop == std::string::npos)
        throw std::runtime_error("no " + begin + " in the document");
    return document.substr(start + begin.size(), stop - start - begin.size());
}

std::vector<std::string> linesBeginningWith(const std::string& document, const std::string& start) {
    std::vector<std::string> lines;
    std::istringstream stream(document);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(start))
            lines.push_back(line);
    return lines;
}

std::string onlyDigitsAndPoint(const std::string& text) {
    std::string kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
    return kept;
}

// Between bars; an empty last one counts.
std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == '|')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

} // namespace

// A real number in its shortest form.
std::string numberInCatalogue(const std::string& text) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream.precision(15);
    stream << std::stod(text);
    std::string result = stream.str();
    if (result.find_first_of(".e") == std::string::npos)
        result += ".0";
    return result;
}

std::vector<EventRow> rowsOfDocument(const std::string& document) {
    std::vector<EventRow> rows;
    std::istringstream lines(document);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() < 13 || line[0] == '#')
            continue;
        std::string utc = fields[1];
        std::replace(utc.begin(), utc.end(), 'T', ' ');
        utc.resize(utc.size() - 3);
        rows.push_back({utc, numberInCatalogue(fields[2]), numberInCatalogue(fields[3]),
                        numberInCatalogue(fields[4]), numberInCatalogue(fields[10]), fields[5]});
    }
    return rows;
}

std::vector<EventRow> rowsOfQuakeMl(const std::string& document) {
    std::vector<EventRow> rows;
    for (const std::string& event : linesBeginningWith(document, "<event ")) {
        const auto value = [&](const std::string& element) {
            return between(event, "<" + element + "><value>", "</value>");
        };
        std::string utc = value("time");
        utc[10] = ' ';
        utc.pop_back(); // the "Z"
        const std::string kilometres = std::to_string(std::stod(value("depth")) / 1000);
        rows.push_back({utc, numberInCatalogue(value("latitude")),
                        numberInCatalogue(value("longitude")), numberInCatalogue(kilometres),
                        numberInCatalogue(value("mag")), "USGS"});
    }
    return rows;
}

std::vector<EventRow> rowsOfRss(const std::string& document) {
    std::vector<EventRow> rows;
    for (const std::string& item : linesBeginningWith(document, "<item>")) {
        const auto value = [&](const std::string& element) {
            return between(item, "<" + element + ">", "</");
        };
        const std::string magnitude = value("emsc:magnitude"); // "ML 2.2"
        rows.push_back({value("emsc:time").substr(0, 19) + ".000",
                        numberInCatalogue(value("geo:lat")), numberInCatalogue(value("geo:long")),
                        numberInCatalogue(onlyDigitsAndPoint(value("emsc:depth"))),
                        numberInCatalogue(magnitude.substr(magnitude.find(' ') + 1)), "EMSC"});
    }
    return rows;
}

std::vector<EventRow> rowsOfIsideExport(const std::string& document) {
    std::vector<EventRow> rows;
    std::istringstream stream(document);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream fields(line);
        std::vector<std::string> values;
        for (std::string field; std::getline(fields, field, ';');)
            values.push_back(field);
        if (values.size() == 6 && !line.starts_with('#'))
            rows.push_back({values[0], numberInCatalogue(values[1]), numberInCatalogue(values[2]),
                            numberInCatalogue(values[3]), numberInCatalogue(values[4]), values[5]});
    }
    return rows;
}

EventRow rowOfBulletin(const std::string& bulletin) {
    const std::regex solution("  \\S.*  M[Lw]=(\\S+)  (\\d+)/(\\d+)/(\\d+)  ([0-9:]+)  "
                              "(\\S+) N  (\\S+) E  (\\d+) km");
    std::smatch fields;
    if (!std::regex_search(bulletin, fields, solution))
        throw std::runtime_error("no solution in " + bulletin);
    return {fields.str(2) + "-" + fields.str(3) + "-" + fields.str(4) + " " + fields.str(5) +
                ".000",
            numberInCatalogue(fields[6]),
            numberInCatalogue(fields[7]),
            numberInCatalogue(fields[8]),
            numberInCatalogue(fields[1]),
            "SEISCP"};
}

// The catalogue gets what stands in its columns: the last digit of the latitude falls away.
EventRow rowOfSFile(const std::string& text) {
    const auto columns = [&](std::size_t from, std::size_t to) {
        return text.substr(from - 1, to - from + 1);
    };
    return {columns(2, 5) + "-" + columns(7, 8) + "-" + columns(9, 10) + " " + columns(12, 13) +
                ":" + columns(14, 15) + ":" +
                std::regex_replace(columns(17, 18), std::regex(" "), "0") + "." + columns(20, 20),
            numberInCatalogue(columns(24, 29)),
            numberInCatalogue(columns(31, 37)),
            numberInCatalogue(columns(40, 43)),
            numberInCatalogue(columns(57, 59)),
            "LIVELOC"};
}

} // namespace tremor::journeys
