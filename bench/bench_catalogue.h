#pragma once

#include <cstdint>
#include <random>
#include <string>

// Catalogues of made-up but plausible events, the same ones at every run and on every machine. For
// benchmarks, practice and trying the program with a large catalogue.
namespace tremor {

// One event as text, in the forms that the services send.
struct SyntheticEvent {
    std::string utc; // "2004-06-12 03:21:44.150"
    std::string latitude;
    std::string longitude;
    std::string depth; // km
    std::string magnitude;
    std::string source;
};

// Events in the order of their times, from 1985 on, about 25000 a year: clustered in a handful of
// zones of the central Mediterranean, ten times fewer for each magnitude more.
class SyntheticEvents {
  public:
    SyntheticEvent next();

  private:
    double uniform(); // above 0, at most 1

    std::mt19937_64 random_{19850101};
    std::int64_t milliseconds_ = 0; // since the beginning of 1985
};

// Makes the file with all tables of a catalogue and `rows` events. Throws std::runtime_error when
// the file is there already or cannot be written.
void makeCatalogue(const std::string& path, std::int64_t rows);

// An answer of the event service of INGV with the first `rows` events behind the first `skipped`
// ones, header line included.
std::string ingvAnswer(std::int64_t skipped, std::int64_t rows);

} // namespace tremor
