#include "common/ChildProcess.h"

#include "common/Operation.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <set>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace zdt {
namespace {

// How long a cancelled group has to end after SIGTERM before SIGKILL follows.
constexpr auto PoliteEndTime = std::chrono::milliseconds(1500);
// How often the wait looks at the cancel flag when the child writes nothing.
constexpr int PollMilliseconds = 50;

// The groups of the children being waited for, so that the program's exit can end them.
std::mutex& RunningGroupsMutex() {
    static std::mutex mutex;
    return mutex;
}

std::set<pid_t>& RunningGroups() {
    static std::set<pid_t> groups;
    return groups;
}

class RunningGroupEntry {
public:
    explicit RunningGroupEntry(pid_t group) : m_group(group) {
        std::lock_guard lock(RunningGroupsMutex());
        RunningGroups().insert(m_group);
    }
    ~RunningGroupEntry() {
        std::lock_guard lock(RunningGroupsMutex());
        RunningGroups().erase(m_group);
    }
    RunningGroupEntry(const RunningGroupEntry&) = delete;
    RunningGroupEntry& operator=(const RunningGroupEntry&) = delete;

private:
    pid_t m_group;
};

// A pipe whose read end the parent keeps; closes what it holds.
struct CapturePipe {
    int readEnd = -1;
    int writeEnd = -1;
    std::string* text = nullptr;

    CapturePipe() = default;
    CapturePipe(const CapturePipe&) = delete;
    CapturePipe& operator=(const CapturePipe&) = delete;
    ~CapturePipe() {
        closeWriteEnd();
        if (readEnd >= 0)
            ::close(readEnd);
    }
    bool open(std::string& target) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0)
            return false;
        readEnd = ends[0];
        writeEnd = ends[1];
        text = &target;
        return true;
    }
    void closeWriteEnd() {
        if (writeEnd >= 0)
            ::close(writeEnd);
        writeEnd = -1;
    }
    // Reads what is there; false once the child closed its end.
    bool drain() {
        char buffer[65536];
        for (;;) {
            const ssize_t got = ::read(readEnd, buffer, sizeof buffer);
            if (got > 0) {
                text->append(buffer, static_cast<std::size_t>(got));
                continue;
            }
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0 && errno == EAGAIN) // EWOULDBLOCK is the same code on Linux
                return true;
            ::close(readEnd);
            readEnd = -1;
            return false;
        }
    }
};

class SpawnFileActions {
public:
    SpawnFileActions() { posix_spawn_file_actions_init(&m_actions); }
    ~SpawnFileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    SpawnFileActions(const SpawnFileActions&) = delete;
    SpawnFileActions& operator=(const SpawnFileActions&) = delete;
    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions{};
};

class SpawnAttributes {
public:
    SpawnAttributes() { posix_spawnattr_init(&m_attributes); }
    ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    posix_spawnattr_t* get() { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes{};
};

// Routes descriptor `target` of the child as `stream` says; a capture opens `pipe`.
bool RouteStream(SpawnFileActions& actions, int target, const ChildStream& stream, CapturePipe& pipe,
                 std::string& captured) {
    switch (stream.kind) {
    case ChildStream::Kind::Discard:
        return posix_spawn_file_actions_addopen(actions.get(), target, "/dev/null", O_WRONLY, 0) == 0;
    case ChildStream::Kind::File:
        return posix_spawn_file_actions_addopen(actions.get(), target, stream.path.c_str(),
                                                O_WRONLY | O_CREAT | O_TRUNC, 0644) == 0;
    case ChildStream::Kind::Capture:
        return pipe.open(captured) && posix_spawn_file_actions_adddup2(actions.get(), pipe.writeEnd, target) == 0;
    }
    return false;
}

// The parent's environment with `changes` laid over it, as "NAME=value" strings.
std::vector<std::string> ChildEnvironment(const std::vector<std::pair<std::string, std::string>>& changes) {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string text(*entry);
        const bool replaced = std::any_of(changes.begin(), changes.end(), [&](const auto& change) {
            return text.size() > change.first.size() && text.compare(0, change.first.size(), change.first) == 0 &&
                   text[change.first.size()] == '=';
        });
        if (!replaced)
            entries.push_back(text);
    }
    for (const auto& [name, value] : changes)
        entries.push_back(name + "=" + value);
    return entries;
}

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

void SetNonBlocking(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags >= 0)
        ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

// Waits for the pipes or the poll interval, whichever comes first, and drains what came.
void DrainPipes(CapturePipe& output, CapturePipe& error, int timeoutMilliseconds) {
    pollfd watched[2];
    nfds_t count = 0;
    for (CapturePipe* pipe : {&output, &error}) {
        if (pipe->readEnd >= 0)
            watched[count++] = pollfd{pipe->readEnd, POLLIN, 0};
    }
    if (count == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(timeoutMilliseconds));
        return;
    }
    if (::poll(watched, count, timeoutMilliseconds) <= 0)
        return;
    for (CapturePipe* pipe : {&output, &error}) {
        if (pipe->readEnd >= 0)
            pipe->drain();
    }
}

// Non-blocking reap; true once the child ended, with `status` set.
bool Reaped(pid_t child, int& status) {
    for (;;) {
        const pid_t reaped = ::waitpid(child, &status, WNOHANG);
        if (reaped == child)
            return true;
        if (reaped < 0 && errno == EINTR)
            continue;
        return reaped < 0; // ECHILD: somebody else reaped it; nothing left to wait for
    }
}

// Ends the group: SIGTERM, a grace period, then SIGKILL; reaps the child.
void EndGroup(pid_t child, CapturePipe& output, CapturePipe& error) {
    ::kill(-child, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + PoliteEndTime;
    int status = 0;
    while (std::chrono::steady_clock::now() < deadline) {
        if (Reaped(child, status)) {
            // The script is gone; tools it left in the group go too.
            ::kill(-child, SIGKILL);
            return;
        }
        DrainPipes(output, error, 20);
    }
    ::kill(-child, SIGKILL);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

ChildProcessResult RunChildProcess(const ChildProcessCommand& command, const OperationControl* control) {
    ChildProcessResult result;
    if (command.arguments.empty()) {
        result.startError = EINVAL;
        return result;
    }
    SpawnFileActions actions;
    CapturePipe output;
    CapturePipe error;
    if (posix_spawn_file_actions_addopen(actions.get(), 0, "/dev/null", O_RDONLY, 0) != 0 ||
        !RouteStream(actions, 1, command.standardOutput, output, result.standardOutput) ||
        !RouteStream(actions, 2, command.standardError, error, result.standardError)) {
        result.startError = errno != 0 ? errno : EINVAL;
        return result;
    }
    SpawnAttributes attributes;
    posix_spawnattr_setpgroup(attributes.get(), 0);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGTERM);
    sigaddset(&defaults, SIGINT);
    posix_spawnattr_setsigdefault(attributes.get(), &defaults);
    sigset_t noneBlocked;
    sigemptyset(&noneBlocked);
    posix_spawnattr_setsigmask(attributes.get(), &noneBlocked);
    posix_spawnattr_setflags(attributes.get(), POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    std::vector<std::string> arguments = command.arguments;
    std::vector<std::string> environment = ChildEnvironment(command.environment);
    std::vector<char*> argumentPointers = PointersTo(arguments);
    std::vector<char*> environmentPointers = PointersTo(environment);

    pid_t child = -1;
    const int started = ::posix_spawnp(&child, argumentPointers[0], actions.get(), attributes.get(),
                                       argumentPointers.data(), environmentPointers.data());
    if (started != 0) {
        result.startError = started;
        return result;
    }
    // The group exists from the child's first instruction, so it can be ended by its number.
    RunningGroupEntry registered(child);
    output.closeWriteEnd();
    error.closeWriteEnd();
    if (output.readEnd >= 0)
        SetNonBlocking(output.readEnd);
    if (error.readEnd >= 0)
        SetNonBlocking(error.readEnd);

    int status = 0;
    for (;;) {
        if (control != nullptr && control->isCancelRequested()) {
            EndGroup(child, output, error);
            result.end = ChildProcessResult::End::Cancelled;
            return result;
        }
        DrainPipes(output, error, PollMilliseconds);
        if (Reaped(child, status))
            break;
    }
    // What the child wrote just before it ended is in the pipes now. One read to the
    // bottom: a tool it left running may hold the pipe open, and is not waited for.
    if (output.readEnd >= 0)
        output.drain();
    if (error.readEnd >= 0)
        error.drain();
    if (WIFSIGNALED(status)) {
        result.end = ChildProcessResult::End::Signalled;
        result.signal = WTERMSIG(status);
    } else {
        result.end = ChildProcessResult::End::Exited;
        result.exitCode = WEXITSTATUS(status);
    }
    return result;
}

void KillRunningChildProcesses() {
    std::lock_guard lock(RunningGroupsMutex());
    for (const pid_t group : RunningGroups())
        ::kill(-group, SIGKILL);
}

std::string FindProgramOnPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    if (name.empty() || path == nullptr)
        return {};
    std::string remaining(path);
    std::size_t start = 0;
    while (start <= remaining.size()) {
        const std::size_t end = std::min(remaining.find(':', start), remaining.size());
        std::string directory = remaining.substr(start, end - start);
        if (directory.empty())
            directory = ".";
        const std::string candidate = directory + "/" + name;
        struct stat info {};
        if (::stat(candidate.c_str(), &info) == 0 && S_ISREG(info.st_mode) && ::access(candidate.c_str(), X_OK) == 0)
            return directory;
        start = end + 1;
    }
    return {};
}

} // namespace zdt
