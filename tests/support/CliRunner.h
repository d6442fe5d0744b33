#pragma once

#include "support/TempDir.h"

#include <cstdlib>
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
