#pragma once

#include "CliOptions.h"

// zdt-cli for process value traces: rows, info and find. Returns the process exit status.
int RunXpvtCommand(const CliArguments& args);
