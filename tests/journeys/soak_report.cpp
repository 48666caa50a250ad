#include "journeys/soak_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tremor::journeys {
namespace {

double mebibytes(long kibibytes) {
    return static_cast<double>(kibibytes) / 1024;
}

// A line of the chart: one point for each sample.
template <class Value>
std::string polyline(const std::vector<MemorySample>& samples, const char* colour, double xScale,
                     double yScale, Value value) {
    std::string points;
    for (const MemorySample& sample : samples)
        points += fmt::format("{:.1f},{:.1f} ", 60 + sample.at * xScale,
                              340 - mebibytes(value(sample)) * yScale);
    return fmt::format("<polyline fill=\"none\" stroke=\"{}\" points=\"{}\"/>\n", colour, points);
}

std::string chartOf(const std::vector<MemorySample>& samples) {
    const double duration = std::max(1.0, samples.empty() ? 0 : samples.back().at);
    long highest = 1;
    for (const MemorySample& sample : samples)
        highest = std::max(highest, sample.program + sample.web);
    const double xScale = 720 / duration;
    const double yScale = 300 / mebibytes(highest);
    std::string text =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"380\" "
        "font-family=\"sans-serif\" font-size=\"12\">\n<rect width=\"800\" height=\"380\" "
        "fill=\"white\"/>\n<path d=\"M60 40V340H780\" fill=\"none\" stroke=\"black\"/>\n";
    text += fmt::format("<text x=\"4\" y=\"44\">{:.0f} MiB</text><text x=\"40\" y=\"344\">0</text>"
                        "<text x=\"720\" y=\"360\">{:.1f} min</text>\n",
                        mebibytes(highest), duration / 60);
    text += polyline(samples, "black", xScale, yScale,
                     [](const MemorySample& sample) { return sample.program + sample.web; });
    text += polyline(samples, "blue", xScale, yScale,
                     [](const MemorySample& sample) { return sample.program; });
    text += polyline(samples, "green", xScale, yScale,
                     [](const MemorySample& sample) { return sample.web; });
    return text + "<text x=\"70\" y=\"20\">Resident memory: <tspan fill=\"black\">all</tspan>, "
                  "<tspan fill=\"blue\">program</tspan>, <tspan fill=\"green\">web engine</tspan>"
                  "</text>\n</svg>\n";
}

} // namespace

double numberOfVariable(const char* name, double otherwise) {
    const char* const text = std::getenv(name);
    if (text == nullptr)
        return otherwise;
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    if (end == text || *end != '\0' || !(number > 0))
        throw std::invalid_argument(fmt::format("{} is no number above zero: {}", name, text));
    return number;
}

std::string reportFolder() {
    const char* const folder = std::getenv("TREMOR_SOAK_REPORT");
    if (folder == nullptr)
        return {};
    std::filesystem::create_directories(folder);
    return folder;
}

void keepProgramFolder(const std::string& folder) {
    const std::string report = reportFolder();
    std::error_code ignored;
    if (!report.empty())
        std::filesystem::copy(folder, report + "/program",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::overwrite_existing,
                              ignored);
}

std::string summaryOf(const ProgramWatch& watch, double warmUpSeconds) {
    std::string text = fmt::format("The window gave {} answers, {} of them 0.25 s late or later.\n",
                                   watch.answers(), watch.lateAnswers().size());
    std::vector<LateAnswer> slowest = watch.lateAnswers();
    std::sort(slowest.begin(), slowest.end(),
              [](const LateAnswer& a, const LateAnswer& b) { return a.ofItsOwn() > b.ofItsOwn(); });
    slowest.resize(std::min<std::size_t>(slowest.size(), 10));
    for (const LateAnswer& answer : slowest)
        text += fmt::format("  at {:6.1f} s: after {:.2f} s, {:.2f} s of them without a core\n",
                            answer.at, answer.after, answer.withoutCore);
    const std::vector<MemorySample>& memory = watch.memory();
    text += "Memory in MiB: seconds, program, web engine\n";
    for (std::size_t i = 0; i <= 10 && !memory.empty(); ++i) {
        const MemorySample& sample = memory[(memory.size() - 1) * i / 10];
        text += fmt::format("  {:7.0f} {:7.1f} {:7.1f}\n", sample.at, mebibytes(sample.program),
                            mebibytes(sample.web));
    }
    return text + fmt::format("Growth behind the first {:.0f} s: {:.2f} MiB a minute\n",
                              warmUpSeconds, growthPerMinute(memory, warmUpSeconds) / 1024);
}

void writeCurves(const ProgramWatch& watch, const std::string& folder) {
    std::ofstream memory(folder + "/memory.csv");
    memory << "seconds,program KiB,web engine KiB\n";
    for (const MemorySample& sample : watch.memory())
        memory << fmt::format("{:.1f},{},{}\n", sample.at, sample.program, sample.web);
    std::ofstream(folder + "/memory.svg") << chartOf(watch.memory());
    std::ofstream late(folder + "/late_answers.csv");
    late << "seconds,answered after s,without a core s\n";
    for (const LateAnswer& answer : watch.lateAnswers())
        late << fmt::format("{:.1f},{:.3f},{:.3f}\n", answer.at, answer.after, answer.withoutCore);
}

} // namespace tremor::journeys
