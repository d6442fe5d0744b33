#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zdt {

class OperationControl;

// Where one standard stream of a child goes.
struct ChildStream {
    enum class Kind { Discard, File, Capture };
    Kind kind = Kind::Discard;
    std::string path; // Kind::File: created or truncated

    static ChildStream discard() { return {}; }
    static ChildStream toFile(std::string filePath) { return {Kind::File, std::move(filePath)}; }
    static ChildStream capture() { return {Kind::Capture, {}}; }
};

// One program to run. No shell sees the arguments, so blanks, quotes and any other
// byte in them reach the program as they are.
struct ChildProcessCommand {
    // argv[0] is looked up on PATH when it holds no "/".
    std::vector<std::string> arguments;
    ChildStream standardOutput;
    ChildStream standardError;
    // Added to (or replacing in) the parent's environment.
    std::vector<std::pair<std::string, std::string>> environment;
};

struct ChildProcessResult {
    enum class End { Exited, Signalled, NotStarted, Cancelled };
    End end = End::NotStarted;
    int exitCode = 0;           // End::Exited
    int signal = 0;             // End::Signalled
    int startError = 0;         // End::NotStarted: the errno of the failed start
    std::string standardOutput; // ChildStream::Kind::Capture only
    std::string standardError;  // ChildStream::Kind::Capture only

    bool succeeded() const { return end == End::Exited && exitCode == 0; }
};

// Starts the program in a process group of its own and waits for it. While it runs, the
// captured streams are drained and `control` (may be null) is asked for a cancel: a cancel
// ends the whole group, first politely, then for good, and reaps it before returning, so
// that scripts take their tools with them.
ChildProcessResult RunChildProcess(const ChildProcessCommand& command, const OperationControl* control);

// Ends every child that RunChildProcess is still waiting for in this process. For the
// program's last moments, so that no child outlives it.
void KillRunningChildProcesses();

// The first directory of PATH that holds an executable `name`; empty when none does.
std::string FindProgramOnPath(const std::string& name);

} // namespace zdt
