#pragma once

// zdt-cli paths: where this program finds its installation files and keeps its
// temporary and filter folders, to tell a broken installation from a broken trace.
bool IsPathsCommand(const char* command);
// Throws UsageError when given more arguments.
int RunPathsCommand(int argc, char** argv);
