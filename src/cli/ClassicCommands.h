#pragma once

#include "CliOptions.h"

// The classic family's commands; each returns the process exit status.
int RunClassicRows(const CliArguments& args);
int RunClassicInfo(const CliArguments& args);
int RunClassicSbt(const CliArguments& args);
int RunClassicFind(const CliArguments& args);
