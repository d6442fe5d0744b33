#pragma once

// `zdt-cli stats [--time MODE] [--baud N --data-bits N --stop-bits N] [--can-filter F.flt] FILE`:
// the identifier statistics of the visible rows of a classic trace, tab-separated.
bool IsStatsCommand(const char* command);
// Throws UsageError for arguments that do not fit; returns the exit status otherwise.
int RunStatsCommand(int argc, char** argv);
