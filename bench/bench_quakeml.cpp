// How long does a large answer of the USGS take to read, and a long feed of the EMSC?
//
//     bench_quakeml [EVENTS]     20,000 events unless told otherwise
//
// Ours are the readers of the program, from the text of the document to the records that would be
// inserted. The reference is the SAX2 parser of libxml2 (http://xmlsoft.org) with handlers that do
// nothing, so that it merely walks the same bytes. The documents repeat the events of two real
// answers (tests/data) with other numbers. Both run in turn on the same text; read the line
// "_median":
//
//     ratio            our time divided by libxml2's; the goal is at most 1.0
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     MB_per_s         our speed

#include "bench_catalogue.h"
#include "bench_main.h"
#include "core/common_text.h"
#include "ingest/emsc_source.h"
#include "ingest/usgs_source.h"
#include "shell_reference.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <libxml/parser.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace tremor;

// A real answer, cut into the lines of its events and what stands around them.
struct Answer {
    std::string head;
    std::vector<std::string> events;
    std::string tail;
};

Answer readAnswer(const std::string& file, std::string_view eventStart) {
    std::ifstream stream(std::string(TREMOR_TEST_DATA) + "/" + file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    Answer answer;
    for (const std::string_view line : split(text, '\n')) {
        if (line.starts_with(eventStart))
            answer.events.emplace_back(line);
        else
            (answer.events.empty() ? answer.head : answer.tail).append(line).append("\n");
    }
    if (answer.events.empty())
        throw std::runtime_error("no event in " + file);
    return answer;
}

// Puts another text into the first element of that name behind `from`. The place behind it.
std::size_t replaceValue(std::string& line, std::string_view start, std::string_view text,
                         std::size_t from = 0) {
    const std::size_t found = line.find(start, from);
    if (found == std::string::npos)
        throw std::runtime_error(fmt::format("no {} in an event", start));
    const std::size_t begin = found + start.size();
    line.replace(begin, line.find('<', begin) - begin, text);
    return begin + text.size();
}

std::string usgsEvent(std::string line, const SyntheticEvent& event) {
    std::string time = event.utc + "Z";
    time[10] = 'T';
    replaceValue(line, "<time><value>", time);
    replaceValue(line, "<longitude><value>", event.longitude);
    replaceValue(line, "<latitude><value>", event.latitude);
    replaceValue(line, "<depth><value>", fmt::format("{:.0f}", 1000 * std::stod(event.depth)));
    replaceValue(line, "<mag><value>", event.magnitude);
    return line;
}

std::string emscItem(std::string line, const SyntheticEvent& event) {
    replaceValue(line, "<geo:lat>", event.latitude);
    replaceValue(line, "<geo:long>", event.longitude);
    replaceValue(line, "<emsc:depth>", event.depth + "  ");
    replaceValue(line, "<emsc:magnitude>", "ML " + event.magnitude);
    replaceValue(line, "<emsc:time>", event.utc.substr(0, 19) + " UTC");
    return line;
}

using MakeEvent = std::string (*)(std::string line, const SyntheticEvent& event);

std::string document(const Answer& answer, std::int64_t count, MakeEvent make) {
    std::string text = answer.head;
    SyntheticEvents events;
    for (std::int64_t index = 0; index < count; ++index)
        text += make(answer.events[static_cast<std::size_t>(index) % answer.events.size()],
                     events.next()) +
                "\n";
    return text + answer.tail;
}

// Handlers that do nothing for everything that the two documents hold.
xmlSAXHandler emptyHandlers() {
    xmlSAXHandler handlers{};
    handlers.initialized = XML_SAX2_MAGIC;
    handlers.startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int,
                                 const xmlChar**, int, int, const xmlChar**) {};
    handlers.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
    handlers.characters = [](void*, const xmlChar*, int) {};
    handlers.cdataBlock = [](void*, const xmlChar*, int) {};
    return handlers;
}

Elapsed walkByLibxml2(const std::string& text) {
    xmlSAXHandler handlers = emptyHandlers();
    const Stopwatch watch;
    const int error =
        xmlSAXUserParseMemory(&handlers, nullptr, text.data(), static_cast<int>(text.size()));
    const Elapsed elapsed = watch.elapsed();
    if (error != 0)
        throw std::runtime_error(fmt::format("libxml2 refuses the document: {}", error));
    return elapsed;
}

using Parse = std::function<ParsedFeed(std::string_view)>;

void run(benchmark::State& state, const std::string& text, std::int64_t events,
         const Parse& parse) {
    for ([[maybe_unused]] auto turn : state) {
        const Stopwatch watch;
        const ParsedFeed feed = parse(text);
        const Elapsed ours = watch.elapsed();
        if (static_cast<std::int64_t>(feed.records.size()) != events)
            throw std::runtime_error("events are missing");
        const Elapsed walk = walkByLibxml2(text);
        state.SetIterationTime(ours.wall);
        state.counters["libxml2_s"] = walk.wall;
        state.counters["ratio"] = ours.wall / walk.wall;
        state.counters["cpu_ratio"] = ours.processor / walk.processor;
        state.counters["MB_per_s"] = 1e-6 * static_cast<double>(text.size()) / ours.wall;
    }
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t defaultEvents = 20'000;
    return benchmarkMain(
        argc, argv,
        [](std::int64_t events) {
            const std::string usgs =
                document(readAnswer("usgs/usgs_fdsn_query_2018.xml", "<event "), events, usgsEvent);
            const std::string emsc =
                document(readAnswer("emsc/emsc_rss_two_items.xml", "<item>"), events, emscItem);
            addBenchmark("parseUsgsEvents", [&](benchmark::State& state) {
                run(state, usgs, events, [](std::string_view text) {
                    return parseUsgsEvents(text, NumberLocale::comma());
                });
            });
            addBenchmark("parseEmscEvents", [&](benchmark::State& state) {
                run(state, emsc, events, parseEmscEvents);
            });
            benchmark::RunSpecifiedBenchmarks();
        },
        defaultEvents);
}
