#pragma once

#include "core/error_report.h"
#include "core/ports.h"

#include <string>
#include <string_view>

namespace tremor {

// Finds out which run-time parts are there. Replaceable, so that each missing part can be tried.
class RuntimeParts {
  public:
    virtual ~RuntimeParts() = default;
    // True when the part of that file name ("SQLite3.dll") has its equivalent on this system.
    virtual bool fileExists(std::string_view fileName) = 0;
    // Creates the data-format component. 0 on success, 429 when it cannot be created, any other
    // number with its description for another error.
    virtual long createDataFormat(std::string& description) = 0;
    // Registers the component; 0 on success.
    virtual long registerDataFormat() = 0;
};

// The parts as they are on this system: the SQLite library loads and answers; the program's own
// number formatter is always there.
class SystemRuntimeParts : public RuntimeParts {
  public:
    bool fileExists(std::string_view fileName) override;
    long createDataFormat(std::string& description) override;
    long registerDataFormat() override;
};

// True when the data-format component exists and can be created; otherwise the critical box has
// been shown.
bool CheckMSSTDFMT(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors);

// True when the parts of the storage engine exist; otherwise the box for the first missing one has
// been shown.
bool CheckSqlitening(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors);

// Both checks in their order; the second is not reached when the first fails.
bool checkPrerequisites(RuntimeParts& parts, Prompts& prompts, ErrorReport& errors);

} // namespace tremor
