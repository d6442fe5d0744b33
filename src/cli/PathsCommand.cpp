#include "PathsCommand.h"

#include "CliOptions.h"
#include "app/WellKnownPaths.h"

#include <sys/stat.h>

#include <cstdio>
#include <string>

bool IsPathsCommand(const char* command) {
    return std::string(command) == "paths";
}

int RunPathsCommand(int argc, char** argv) {
    (void)argv;
    if (argc > 2)
        throw UsageError{"paths takes no arguments"};
    const std::string& binaryDir = zdt::AnalyzerBinaryDir();
    // Resolved, not made: asking must not create folders or seed them.
    std::printf("Installation files: %s\n", binaryDir.c_str());
    std::printf("Temporary root: %s\n", zdt::AnalyzerTempRoot().c_str());
    std::printf("Filter files: %s\n", zdt::ResolveAnalyzerDataDir(binaryDir, "FilterDefaultDir").c_str());
    struct stat info {};
    if (stat(binaryDir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        std::fprintf(stderr, "zdt-cli: the installation files are missing: %s\n", binaryDir.c_str());
        return 1;
    }
    return 0;
}
