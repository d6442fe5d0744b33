#pragma once

#include <string>
#include <vector>

namespace zdt {
class OperationControl;
}

namespace ZDTAnalyzer {

// How one tool run ended. The first three values are the codes of the tool runner.
enum class ProcessOutcome { Succeeded = 0, NotStarted = 1, Failed = 2, Cancelled = 3 };

struct ProcessRun {
    ProcessOutcome outcome = ProcessOutcome::NotStarted;
    int startError = 0; // errno of a start that failed
};

// Runs `arguments` (argv[0] a path or a name on PATH) without a shell and waits for it.
// The streams are not redirected here: the scripts write their capture files themselves.
// A cancel through `control` ends the whole process group of the tool.
ProcessRun runProcess(const std::vector<std::string>& arguments, const zdt::OperationControl* control);

} // namespace ZDTAnalyzer
