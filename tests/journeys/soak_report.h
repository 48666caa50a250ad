#pragma once

#include "journeys/soak_watch.h"

#include <string>

// What is left of a soak: a summary for the one who started it, and files when TREMOR_SOAK_REPORT
// names a folder for them.
namespace tremor::journeys {

// A variable's number, or another one when it is not set. Throws std::invalid_argument when it is
// set to no number above zero.
double numberOfVariable(const char* name, double otherwise);

// Keeps a copy of the program's folder as "program" when a report is wanted.
void keepProgramFolder(const std::string& folder);

// Empty when no report is wanted; the folder exists.
std::string reportFolder();

// Several lines: the answers of the window, and the memory at ten moments of the time.
std::string summaryOf(const ProgramWatch& watch, double warmUpSeconds);

// memory.csv, memory.svg and late_answers.csv in the folder.
void writeCurves(const ProgramWatch& watch, const std::string& folder);

} // namespace tremor::journeys
