#pragma once

#include "support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

// Runs zdt-cli as a user would, capturing both streams and the exit status.
struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string ShellQuote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// `environment` is prepended to the command line ("NAME=value ..."); the streams go
// through files in `dir`.
inline CliRun RunCli(const TempDir& dir, const std::vector<std::string>& args, const std::string& environment = "") {
    std::string command = environment + " " + ShellQuote(ZDT_CLI_PATH);
    for (const auto& arg : args)
        command += " " + ShellQuote(arg);
    const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
    command += " >" + ShellQuote(out) + " 2>" + ShellQuote(err);
    const int raw = std::system(command.c_str());
    CliRun run;
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = TempDir::Read(out);
    run.err = TempDir::Read(err);
    return run;
}

// Runs zdt-cli with its temporary root at `dir`/home, where LeftoverFiles looks.
inline CliRun RunCliInHome(const TempDir& dir, const std::vector<std::string>& args) {
    return RunCli(dir, args, "ZDT_ANALYZER_HOME=" + ShellQuote(dir.File("home")));
}

// Files, and directories below the first level, under `dir`/home: swap files and per-run
// directories must all be gone after a run, whatever its end.
inline std::size_t LeftoverFiles(const TempDir& dir) {
    std::size_t count = 0;
    std::error_code error;
    for (auto it = std::filesystem::recursive_directory_iterator(dir.File("home"), error);
         it != std::filesystem::recursive_directory_iterator(); ++it)
        if (!it->is_directory() || it.depth() >= 1)
            ++count;
    return count;
}

// Starts `zdt-cli rows FILE` as RunCliInHome does, sends Ctrl-C 0.3 s later and returns the
// exit status as the shell prints it ("130\n" for a run that stopped on the interrupt).
inline std::string InterruptedRowsStatus(const TempDir& dir, const std::string& file) {
    const std::string command = "ZDT_ANALYZER_HOME=" + ShellQuote(dir.File("home")) + " " + ShellQuote(ZDT_CLI_PATH) +
                                " rows " + ShellQuote(file) + " >/dev/null 2>&1 & pid=$!; sleep 0.3; " +
                                "kill -INT $pid; wait $pid; echo $? >" + ShellQuote(dir.File("status"));
    std::system(command.c_str());
    return TempDir::Read(dir.File("status"));
}
