#pragma once

#include <set>
#include <string>
#include <vector>

// The arguments of zdt-cli query, filter and services.
struct FilterArguments {
    std::string command;
    std::string file;
    std::string output; // filter only
    std::string pvflt;
    std::string pvflt2;
    bool listServices = false;
    bool noServices = false;
    // --service names: sorted by their bytes and without repeats, as the dialog lists them.
    std::set<std::string> services;

    bool namesServices() const { return noServices || !services.empty(); }
};

// Throws UsageError for what does not fit the command or the file's family.
FilterArguments ParseFilterArguments(int argc, char** argv);
const char* FilterUsageText();
