// zdt-cli: the trace core as a command-line tool. It reads traces and never writes into them.
#include "ClassicCommands.h"
#include "CliOptions.h"
#include "ExportCommands.h"
#include "FilterCommands.h"
#include "PathsCommand.h"
#include "SnpCommands.h"
#include "StatsCommands.h"
#include "XpvtCommands.h"
#include "app/DocumentRoute.h"

#include <cstdio>
#include <exception>

namespace {

int Dispatch(const CliArguments& args) {
    if (args.command == "help") {
        std::fputs(UsageText(), stdout);
        return 0;
    }
    if (args.command != "rows" && args.command != "info" && args.command != "sbt" && args.command != "find")
        throw UsageError{"unknown command " + args.command};
    if (args.files.empty())
        throw UsageError{args.command + " needs a file"};
    const zdt::DocumentFamily family = zdt::FamilyForPath(args.files[0]);
    if (family == zdt::DocumentFamily::Snp)
        return RunSnpCommand(args);
    if (family == zdt::DocumentFamily::Xpvt)
        return RunXpvtCommand(args);
    if (args.command == "rows")
        return RunClassicRows(args);
    if (args.command == "info")
        return RunClassicInfo(args);
    if (args.command == "sbt")
        return RunClassicSbt(args);
    return RunClassicFind(args);
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc > 1 && IsPathsCommand(argv[1]))
            return RunPathsCommand(argc, argv);
        if (argc > 1 && IsStatsCommand(argv[1]))
            return RunStatsCommand(argc, argv);
        if (argc > 1 && IsExportCommand(argv[1]))
            return RunExportCommand(argc, argv);
        if (argc > 1 && IsFilterCommand(argv[1]))
            return RunFilterCommand(argc, argv);
        return Dispatch(ParseCliArguments(argc, argv));
    } catch (const UsageError& error) {
        std::fprintf(stderr, "zdt-cli: %s\n\n%s", error.text.c_str(), UsageText());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zdt-cli: %s\n", error.what());
        return 1;
    }
}
