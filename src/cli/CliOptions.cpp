#include "CliOptions.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>

std::uint32_t ParseNumber(const std::string& option, const std::string& text) {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || text[0] == '-' || value > 0xFFFFFFFFull)
        throw UsageError{option + " takes a whole number, not \"" + text + "\""};
    return static_cast<std::uint32_t>(value);
}

TimeMode ParseTimeMode(const std::string& text) {
    if (text == "absolute")
        return TimeMode::Absolute;
    if (text == "relative")
        return TimeMode::Relative;
    if (text == "relative-channel")
        return TimeMode::RelativeChannel;
    if (text == "inter-byte")
        return TimeMode::InterByte;
    throw UsageError{"--time takes absolute, relative, relative-channel or inter-byte, not \"" + text + "\""};
}

const char* UsageText() {
    return "usage: zdt-cli COMMAND [OPTIONS] FILE ...\n"
           "\n"
           "Commands:\n"
           "  rows FILE        one line per visible row:\n"
           "                   LINE MARK TIME CHANNEL IDENTIFIER PRIORITY SOURCE DESTINATION DATA PCTIME,\n"
           "                   separated by tabs\n"
           "  info FILE        the session information, one \"Label value\" line per field\n"
           "  sbt FILE OUT     the \"Save As ASCII file\" report of the visible rows\n"
           "  find [criteria] FILE\n"
           "                   the line numbers of the hits, one per line\n"
           "  paths            where the installation files, the temporary root and the\n"
           "                   filter files are\n"
           "  stats FILE       identifier statistics of the visible rows, one line per identifier\n"
           "                   and channel, sorted by identifier, then channel, after a line of\n"
           "                   the column names, separated by tabs: IDENTIFIER CHANNEL COUNT\n"
           "                   CYCLE_MIN_MS CYCLE_MID_MS CYCLE_MAX_MS LENGTH_MIN LENGTH_MID\n"
           "                   LENGTH_MAX SKIPPED_TIMES. IDENTIFIER is upper-case hex with \"(x)\"\n"
           "                   behind an extended one; CHANNEL is \"-\" where the list shows none.\n"
           "                   Cycle times are the gaps between successive frames of one identifier\n"
           "                   and channel on the trace's absolute time line, whatever --time says,\n"
           "                   in ms with 3 decimals; MID is the mean, as is LENGTH_MID. A frame\n"
           "                   without a time, or with a time before the one of the frame before it,\n"
           "                   gives no cycle time and counts in SKIPPED_TIMES; \"-\" stands where\n"
           "                   there is no cycle time. A trace without identifiers prints the names\n"
           "                   only, and on standard error why\n"
           "\n"
           "Filters and exports of process value traces (.xpvt) and snapshots (.snp):\n"
           "  query FILE.xpvt --pvflt F.pvflt | --pvflt2 F.pvflt2\n"
           "                   the query text the filter would run on FILE\n"
           "  query FILE.snp --list-services\n"
           "                   the query that lists the services\n"
           "  query FILE.snp [--service NAME]... [--no-services]\n"
           "                   the filter query; without --service every service counts as ticked\n"
           "  filter FILE.xpvt --pvflt F.pvflt | --pvflt2 F.pvflt2 OUT\n"
           "  filter FILE.snp [--service NAME]... [--no-services] OUT\n"
           "                   runs the filter through the XQuery engine into OUT\n"
           "  services FILE.snp\n"
           "                   the service names, as the filter dialog lists them\n"
           "  export FILE --to html|rtf|csv|pdf [--list-separator ';'|','] OUT\n"
           "                   converts FILE through the installation's sheets and tools\n"
           "\n"
           "View options (rows, sbt, find, stats):\n"
           "  --time absolute|relative|relative-channel|inter-byte   time mode (default relative)\n"
           "  --baud N --data-bits N --stop-bits N   byte time of the inter-byte mode\n"
           "                   (defaults 10400, 8, 1)\n"
           "  --can-filter FILE.flt   apply this CAN filter; the trace's history is not written\n"
           "\n"
           "Find criteria (the fields of the find dialog):\n"
           "  --use-time --min-time T --max-time T      time bounds, in the unit of the time mode\n"
           "  --use-data --data-text HEX[,HEX...]        data bytes, may run over following frames\n"
           "  --use-identifier --identifier-text HEX    identifier, compared as upper-case hex\n"
           "  --error-passive --warning-96 --error-active --received-corrupted-bytes\n"
           "  --bus-off --buffer-overflow --error-frame --timer-overflow   event checks\n"
           "  --mark-all       also turn every hit into a bookmark\n"
           "A filter named in the trace's history is not re-applied; give --can-filter for that.\n"
           "\n"
           "Snapshot files (.snp, any case):\n"
           "  rows FILE.snp    LINE ROWFLAGS FIELD1 ... FIELD5, separated by tabs, as stored\n"
           "  info FILE.snp    the session information and the number of rows\n"
           "  find FILE.snp name=value ...\n"
           "                   one search with the fields of the search criteria, e.g.\n"
           "                   searchService=1 serviceNameOn=1 serviceName=Read\n"
           "\n"
           "Process value traces (.xpvt, any case; schemas 7.01 and 7.02):\n"
           "  rows FILE.xpvt   LINE ROWFLAGS FIELD1 ..., separated by tabs, as stored\n"
           "                   (7 fields per 7.01 row, 9 per 7.02 row)\n"
           "  info FILE.xpvt   the session information and the number of rows\n"
           "  find FILE.xpvt name=value ...\n"
           "                   one search; a 7.01 file takes the fields of its criteria,\n"
           "                   e.g. searchRequests=1 parameterEnabled=1 parameterText=Speed;\n"
           "                   a 7.02 file takes Section.field=value with the sections\n"
           "                   LogicalLinkSection RequestSection ResponseSection\n"
           "                   PrimitiveSection ResultSection ParameterSection, e.g.\n"
           "                   RequestSection.name=Read (a named section is searched as if\n"
           "                   its page's Find was pressed); flags take 0, 1, true or false\n";
}

CliArguments ParseCliArguments(int argc, char** argv) {
    CliArguments args;
    if (argc < 2)
        throw UsageError{"no command given"};
    args.command = argv[1];
    if (args.command == "--help" || args.command == "-h" || args.command == "help") {
        args.command = "help";
        return args;
    }
    ClassicFindCriteria& c = args.criteria;
    const std::map<std::string, bool*> flags = {
        {"--use-time", &c.useTime},
        {"--use-data", &c.useData},
        {"--use-identifier", &c.useIdentifier},
        {"--error-passive", &c.errorPassive},
        {"--warning-96", &c.warning96},
        {"--error-active", &c.errorActive},
        {"--received-corrupted-bytes", &c.receivedCorruptedBytes},
        {"--bus-off", &c.busOff},
        {"--buffer-overflow", &c.bufferOverflow},
        {"--error-frame", &c.errorFrame},
        {"--timer-overflow", &c.timerOverflow},
        {"--mark-all", &args.markAll},
    };
    const std::map<std::string, std::function<void(const std::string&)>> valued = {
        {"--time", [&](const std::string& v) { args.view.timeMode = ParseTimeMode(v); }},
        {"--baud", [&](const std::string& v) { args.view.baudrate = ParseNumber("--baud", v); }},
        {"--data-bits", [&](const std::string& v) { args.view.dataBits = ParseNumber("--data-bits", v); }},
        {"--stop-bits", [&](const std::string& v) { args.view.stopBits = ParseNumber("--stop-bits", v); }},
        {"--can-filter", [&](const std::string& v) { args.view.canFilter = v; }},
        {"--min-time", [&](const std::string& v) { c.minTime = v; }},
        {"--max-time", [&](const std::string& v) { c.maxTime = v; }},
        {"--data-text", [&](const std::string& v) { c.dataText = v; }},
        {"--data", [&](const std::string& v) { c.dataText = v; }},
        {"--identifier-text", [&](const std::string& v) { c.identifierText = v; }},
        {"--identifier", [&](const std::string& v) { c.identifierText = v; }},
    };
    for (int i = 2; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            args.command = "help";
            return args;
        }
        if (arg.rfind("--", 0) == 0 && arg.size() > 2) {
            std::string value;
            bool inlineValue = false;
            if (const auto equals = arg.find('='); equals != std::string::npos) {
                value = arg.substr(equals + 1);
                arg = arg.substr(0, equals);
                inlineValue = true;
            }
            if (const auto flag = flags.find(arg); flag != flags.end() && !inlineValue) {
                *flag->second = true;
                continue;
            }
            const auto option = valued.find(arg);
            if (option == valued.end())
                throw UsageError{"unknown option " + arg};
            if (!inlineValue) {
                if (i + 1 >= argc)
                    throw UsageError{arg + " needs a value"};
                value = argv[++i];
            }
            option->second(value);
            continue;
        }
        args.files.push_back(arg);
    }
    return args;
}
