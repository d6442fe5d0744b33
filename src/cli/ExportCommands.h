#pragma once

// zdt-cli export FILE --to html|rtf|csv|pdf OUT [--list-separator ';'|',']
// Converts a snapshot file or a process value trace through the installation's tools.
// Exits 0 when OUT was written, 1 with the user's message on standard error when not,
// and throws UsageError for arguments that do not fit.
bool IsExportCommand(const char* command);
int RunExportCommand(int argc, char** argv);
