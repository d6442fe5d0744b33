#pragma once

// zdt-cli query, filter and services: the filters of process value traces and snapshot
// files. Returns the process exit status; bad arguments print usage and give 2.
bool IsFilterCommand(const char* name);
int RunFilterCommand(int argc, char** argv);
