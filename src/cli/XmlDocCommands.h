#pragma once

#include "CliOptions.h"
#include "common/UserMessage.h"
#include "xmldoc/BaseDoc.h"

#include <functional>
#include <string>

// What zdt-cli does alike for every XML document family: Ctrl-C that stops the work at
// its next block, the per-run directory, and rows and marks as lines on standard output.
namespace xmldoccli {

// The exit status of a run that Ctrl-C or termination stopped.
constexpr int InterruptedStatus = 130;

// True once Ctrl-C, termination or hang-up arrived.
bool interrupted();

// Stops a parse or a search at its next block once interrupted.
class InterruptProgress final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long, unsigned long long) override { return !interrupted(); }
};

// Throws UsageError unless the command is rows, info or find, with one file or, for find,
// a file and its criteria. `family` names the documents for other commands
// ("snapshot files").
void requireCommand(const CliArguments& args, const std::string& family);

// Installs the interrupt handlers, makes the per-run directory and calls `run` with its
// path; `run` owns the document, so its swap file is gone before the directory goes.
int runInSessionDirectory(const std::function<int(const std::string& swapDirectory)>& run);

// The status of a failed open or search: interrupted, or 1.
int failureStatus();

// Each row as "number<TAB>field<TAB>field...", the fields as stored, flags first.
int printRows(ZDTAnalyzer::BaseDoc& doc);
// The rows of the last search, one number a line, counted from 1.
int printMarks(const ZDTAnalyzer::BaseDoc& doc);
// Writes and flushes: 0, or 1 when standard output failed (a closed pipe among others).
int printText(const std::string& text);

} // namespace xmldoccli
