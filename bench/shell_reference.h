#pragma once

#include <string>

// What every benchmark here is measured against: the sqlite3 shell (https://sqlite.org/cli.html),
// run as a child process on the same file in the same run.
namespace tremor {

// A folder for the files of a benchmark, removed at the end.
class BenchFolder {
  public:
    BenchFolder();
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    std::string file(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

void writeFile(const std::string& path, const std::string& text);

// Seconds on a clock that never jumps, and seconds of processor time, which a busy machine
// disturbs less.
struct Elapsed {
    double wall = 0;
    double processor = 0;
};

// Measures this process from its construction on.
class Stopwatch {
  public:
    Stopwatch();
    Elapsed elapsed() const;

  private:
    Elapsed start_;
};

// What the shell takes for a script on a database, from its start to its end; what it prints goes
// to /dev/null. Throws std::runtime_error when it fails.
Elapsed runShell(const std::string& database, const std::string& scriptFile);

} // namespace tremor
