#pragma once

#include "export/RunProcess.h"

#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace zdt {
class OperationControl;
}

namespace ZDTAnalyzer {

// One formatter laying out a document that arrives in parts: the formatter runs on a thread
// of its own and reads a named pipe, into which the parts are copied one after the other
// while the next part is being made. So a document of any length goes through one
// formatter, and its pages are numbered through.
class FormatterPipe {
public:
    // Makes the named pipe `pipePath` and starts `arguments`, which name that pipe as their
    // input. A cancel through `control` ends the formatter.
    FormatterPipe(std::string pipePath, std::vector<std::string> arguments, const zdt::OperationControl& control);
    // Ends the input, waits for the formatter and removes the pipe.
    ~FormatterPipe();
    FormatterPipe(const FormatterPipe&) = delete;
    FormatterPipe& operator=(const FormatterPipe&) = delete;

    // Copies the file at `partPath` into the pipe behind the parts before it, and removes
    // the file once copied. Returns at once; the copy of the part before is waited for
    // first. False when that copy or the pipe failed: the formatter has ended or never
    // read, and finish() tells how.
    bool append(std::string partPath);
    // Ends the input and waits for the formatter's end.
    ProcessRun finish();

private:
    bool openPipe();
    bool waitForPreviousPart();
    bool copyIntoPipe(const std::string& partPath) const;
    void closePipe();

    std::string m_pipePath;
    const zdt::OperationControl& m_control;
    bool m_pipeMade = false;
    int m_pipe = -1;
    std::atomic<bool> m_formatterEnded{false};
    ProcessRun m_run;
    std::thread m_formatter;
    std::future<bool> m_copy;
};

} // namespace ZDTAnalyzer
