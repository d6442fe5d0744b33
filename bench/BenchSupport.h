#pragma once

// Measuring helpers shared by the benchmarks: timing, verdicts, the page cache, child
// processes, scratch directories, options and the memory figures of a process.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace benchsupport {

using Clock = std::chrono::steady_clock;
constexpr double kMegabyte = 1024.0 * 1024.0;

inline double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Tracks PASS/FAIL of every checked figure.
class Verdicts {
public:
    void Ratio(const std::string& name, double value, double target) {
        Report(name, value >= target, "ratio " + Format(value, 3) + " (target >= " + Format(target, 2) + ")");
    }
    void Check(const std::string& name, bool ok, const std::string& detail) { Report(name, ok, detail); }
    bool AllPassed() const { return m_failures == 0; }
    static std::string Format(double value, int decimals) {
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        return text;
    }

private:
    void Report(const std::string& name, bool ok, const std::string& detail) {
        std::cout << (ok ? "PASS  " : "FAIL  ") << name << ": " << detail << "\n";
        m_failures += ok ? 0 : 1;
    }
    int m_failures = 0;
};

// Reads the whole file once so that every timed run starts from the page cache.
inline std::uint64_t WarmPageCache(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0)
        return 0;
    std::vector<char> buffer(4 << 20);
    std::uint64_t total = 0;
    for (ssize_t n; (n = ::read(fd, buffer.data(), buffer.size())) > 0;)
        total += static_cast<std::uint64_t>(n);
    ::close(fd);
    return total;
}

// Best (shortest) time of `runs` runs; false as soon as one run fails.
template <typename Timed> inline bool BestOf(int runs, double& best, Timed timed) {
    best = 0;
    for (int i = 0; i < runs; ++i) {
        double seconds = 0;
        if (!timed(seconds))
            return false;
        best = i == 0 ? seconds : std::min(best, seconds);
    }
    return true;
}

inline std::string Speed(double bytes, double seconds) {
    return Verdicts::Format(bytes / kMegabyte, 1) + " MB in " + Verdicts::Format(seconds, 3) +
           " s = " + Verdicts::Format(bytes / kMegabyte / seconds, 1) + " MB/s";
}

inline long StatusKilobytes(const char* key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key, 0) == 0)
            return std::atol(line.c_str() + std::strlen(key));
    return -1;
}

inline std::map<std::string, long long> ParseKeyValues(const std::string& text) {
    std::map<std::string, long long> values;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = std::atoll(line.c_str() + equals + 1);
    }
    return values;
}

// The figures an open-only child prints for its parent to read with ParseKeyValues.
inline void PrintMemoryFigures() {
    std::cout << "hwm_kb=" << StatusKilobytes("VmHWM:") << "\n"
              << "rss_kb=" << StatusKilobytes("VmRSS:") << "\n";
}

// Peak and resident memory of an open-only child against one budget; `budgetNote` goes
// inside the parentheses after the target.
inline void CheckMemory(Verdicts& verdicts, const std::string& peakName, const std::string& residentName,
                        const std::map<std::string, long long>& values, double budget, const std::string& budgetNote) {
    const double peak = static_cast<double>(values.at("hwm_kb")) * 1024.0;
    const double resident = static_cast<double>(values.at("rss_kb")) * 1024.0;
    const std::string limit = " MB (target <= " + Verdicts::Format(budget / kMegabyte, 1) + " MB" + budgetNote + ")";
    verdicts.Check(peakName, peak <= budget, Verdicts::Format(peak / kMegabyte, 1) + limit);
    verdicts.Check(residentName, resident <= budget, Verdicts::Format(resident / kMegabyte, 1) + limit);
}

struct ChildRun {
    double seconds = 0;
    int exitCode = -1;
    std::string output;
    // The largest resident set of the child and of every descendant it waited for.
    double peakMegabytes = 0;
};

// Runs a program (looked up on PATH) with standard output to /dev/null, or captured when
// `capture` is set; the time covers the whole child.
inline ChildRun RunProgram(const std::vector<std::string>& argv, bool capture) {
    ChildRun run;
    int pipeFds[2] = {-1, -1};
    if (capture && ::pipe(pipeFds) != 0)
        return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (capture) {
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
        posix_spawn_file_actions_addclose(&actions, pipeFds[1]);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    std::vector<char*> args;
    for (const auto& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    const auto start = Clock::now();
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (capture) {
        ::close(pipeFds[1]);
        char buffer[4096];
        for (ssize_t n; spawned == 0 && (n = ::read(pipeFds[0], buffer, sizeof buffer)) > 0;)
            run.output.append(buffer, static_cast<std::size_t>(n));
        ::close(pipeFds[0]);
    }
    if (spawned != 0)
        return run;
    int status = 0;
    struct rusage usage {};
    ::wait4(pid, &status, 0, &usage);
    run.seconds = SecondsSince(start);
    run.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}

// A private directory ("<parent>/<prefix>.XXXXXX") for swap files, removed with
// everything in it.
class ScratchDirectory {
public:
    ScratchDirectory(const std::string& parent, const std::string& prefix) {
        std::string pattern = parent + "/" + prefix + ".XXXXXX";
        if (::mkdtemp(pattern.data()) != nullptr)
            m_path = pattern;
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    bool ok() const { return !m_path.empty(); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// Every benchmark option takes a value: `take(name, value)` says whether it knew the
// name. False for an unknown name or a name without its value.
template <typename Take> inline bool ParseValueOptions(int argc, char** argv, Take take) {
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (i + 1 >= argc)
            return false;
        if (!take(name, std::string(argv[++i])))
            return false;
    }
    return true;
}

inline int RunsOption(const std::string& value) {
    return std::max(1, std::atoi(value.c_str()));
}

// Where swap directories go when none is named; empty when the system names none.
inline std::string DefaultTempDirectory() {
    std::error_code error;
    return std::filesystem::temp_directory_path(error).string();
}

} // namespace benchsupport
