#include "FilterArguments.h"

#include "CliOptions.h"
#include "app/DocumentRoute.h"

namespace {

void requireXpvtOptions(const FilterArguments& a) {
    if (a.listServices || a.namesServices())
        throw UsageError{"--list-services, --service and --no-services are for snapshot files"};
    if (a.pvflt.empty() == a.pvflt2.empty())
        throw UsageError{a.command + " on a process value trace needs one of --pvflt F or --pvflt2 F"};
}

void requireSnpOptions(const FilterArguments& a) {
    if (!a.pvflt.empty() || !a.pvflt2.empty())
        throw UsageError{"--pvflt and --pvflt2 are for process value traces"};
    if (a.noServices && !a.services.empty())
        throw UsageError{"--no-services and --service exclude each other"};
    if (a.listServices && (a.command != "query" || a.namesServices()))
        throw UsageError{"--list-services stands alone, with query"};
    if (a.command == "services" && a.namesServices())
        throw UsageError{"services takes only the file"};
}

} // namespace

FilterArguments ParseFilterArguments(int argc, char** argv) {
    FilterArguments a;
    a.command = argv[1];
    std::vector<std::string> files;
    for (int i = 2; i < argc; ++i) {
        const std::string arg = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc)
                throw UsageError{arg + " needs a value"};
            return argv[++i];
        };
        if (arg == "--pvflt")
            a.pvflt = value();
        else if (arg == "--pvflt2")
            a.pvflt2 = value();
        else if (arg == "--service")
            a.services.insert(value());
        else if (arg == "--no-services")
            a.noServices = true;
        else if (arg == "--list-services")
            a.listServices = true;
        else if (arg.size() > 1 && arg[0] == '-')
            throw UsageError{"unknown option " + arg};
        else
            files.push_back(arg);
    }
    const std::size_t wanted = a.command == "filter" ? 2 : 1;
    if (files.size() != wanted)
        throw UsageError{a.command + (wanted == 2 ? " needs a file and an output file" : " needs one file")};
    a.file = files[0];
    if (wanted == 2)
        a.output = files[1];

    switch (zdt::FamilyForPath(a.file)) {
    case zdt::DocumentFamily::Xpvt:
        if (a.command == "services")
            throw UsageError{"services is for snapshot files"};
        requireXpvtOptions(a);
        break;
    case zdt::DocumentFamily::Snp:
        requireSnpOptions(a);
        break;
    case zdt::DocumentFamily::Classic:
        throw UsageError{a.command + " is for process value traces (.xpvt) and snapshot files (.snp)"};
    }
    return a;
}

const char* FilterUsageText() {
    return "usage:\n"
           "  zdt-cli query FILE.xpvt --pvflt F.pvflt | --pvflt2 F.pvflt2\n"
           "  zdt-cli query FILE.snp [--list-services | --service NAME... | --no-services]\n"
           "  zdt-cli filter FILE.xpvt --pvflt F.pvflt | --pvflt2 F.pvflt2 OUT\n"
           "  zdt-cli filter FILE.snp [--service NAME... | --no-services] OUT\n"
           "  zdt-cli services FILE.snp\n"
           "query prints the filter's query text, filter writes the filtered document to OUT,\n"
           "services lists the snapshot file's service names. Without --service every service\n"
           "of the file counts as chosen.\n";
}
