#include "export/RunProcess.h"

#include "common/ChildProcess.h"

namespace ZDTAnalyzer {

ProcessRun runProcess(const std::vector<std::string>& arguments, const zdt::OperationControl* control) {
    zdt::ChildProcessCommand command;
    command.arguments = arguments;
    const zdt::ChildProcessResult result = zdt::RunChildProcess(command, control);
    switch (result.end) {
    case zdt::ChildProcessResult::End::NotStarted:
        return {ProcessOutcome::NotStarted, result.startError};
    case zdt::ChildProcessResult::End::Cancelled:
        return {ProcessOutcome::Cancelled, 0};
    case zdt::ChildProcessResult::End::Exited:
    case zdt::ChildProcessResult::End::Signalled:
        break;
    }
    return {result.succeeded() ? ProcessOutcome::Succeeded : ProcessOutcome::Failed, 0};
}

} // namespace ZDTAnalyzer
