#pragma once

#include "CliOptions.h"

// zdt-cli for snapshot files: rows, info and find. Returns the process exit status.
int RunSnpCommand(const CliArguments& args);
