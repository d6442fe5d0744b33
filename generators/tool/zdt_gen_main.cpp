// zdt-gen: writes generated classic traces, CAN filter files, snapshot files and process
// value traces.

#include "GenArguments.h"

#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const char* const kUsage =
    R"(usage:
  zdt-gen classic [options] OUT          a classic trace; OUT "-" writes to standard output
  zdt-gen flt --type StopFilter|PassFilter --ids 7E8,7DF [--plain] OUT
  zdt-gen snp [--seed N] [--snapshots N | --bytes N] [--hostile LIST] [options] OUT
  zdt-gen xpvt --schema 701|702 [--schema-text T] [--size N | --results N] [--seed S] [--hostile] OUT
  zdt-gen --help

classic options:
  --schema S              Schema value: 2, 5, 501, 601 (default), 701, or any other text
  --no-schema             omit the Schema key
  --title T               Title value (default "ZDT Trace File"; others make CAN-onboard traces)
  --no-title              omit the Title key
  --no-description        write no [Description] section at all
  --creator X, --product-version X, --interface-board X, --date X, --time X
                          the other head keys
  --omit KEY              omit Creator, ProductVersion, InterfaceBoard, Date or Time
  --head-line TEXT        an extra line in [Description] (repeatable)
  --records N             record lines to write (default 1000)
  --bytes N               write records until the file holds N bytes (suffix K, M, G)
  --seed N                random seed (default 1)
  --mix M                 all | can | kline | events | traffic (default all)
  --format F              schema (default) | legacy | 701: the record line formats
  --times T               schema (default) | delta | absolute
  --history F:PATH        a CANFilter entry with flag F (1 or 0) (repeatable)
  --history-bare PATH     a CANFilter entry without flag (repeatable)
  --history-at W          end (default) | middle: where [AnalyzerHistory] stands
  --history-padding N     unknown lines ahead of the history entries
  --lf-only               end lines with LF instead of CR LF
  --no-final-eol          no line ending after the last line
  --hostile LIST          comma list of empty, one, bracket, long, overlong, garbage, all
  --hostile-every N       one hostile line after every N records (default 16)
  --summary FILE          write records, bytes, last record offset and line (hex) to FILE

flt options:
  --type T                StopFilter or PassFilter (any text is written as given)
  --ids LIST              comma list of hexadecimal identifiers; extended ones with bit 31 set
  --plain                 values as plain hex instead of 0x-prefixed

snp options:
  --seed N                random seed (default 1)
  --snapshots N           snapshots to write (default 4)
  --bytes N               write snapshots until the file holds N bytes (suffix K, M, G)
  --hostile LIST          comma list of unknown, catchall, split, control, nonascii, huge,
                          deep, truncated, foreign; "all" is the first seven (the file stays
                          a well-formed snapshot list); truncated and foreign must be named
  --huge-bytes N          size of the huge attribute value (default 1M)
  --depth N               levels of the deep nesting (default 300)
  --created TEXT          "Created" of SnapList (default "14:05:09,21.11.2023")
  --no-created            no "Created" on SnapList
  --compact               no line breaks or indentation between elements
  --rows FILE             also write the rows a reader must list: "#DateTime" TAB value,
                          then per row flags, Event, Description, Name, Value, Unit by TABs;
                          not written for a truncated file, which opens no document

xpvt options:
  --schema 701|702        the element tree to write (default 702)
  --schema-text T         the header's Schema text as given, e.g. "7.02", "7,02 " (default
                          "7.01" or "7,02"); C escapes \n, \t and \\ are read
  --no-schema             no Schema element in the header
  --size N                write results until the file holds N bytes (suffix K, M, G)
  --results N             results to write (default 8)
  --seed N                random seed (default 1)
  --hostile               unknown and misplaced elements, texts split by entities, CDATA and
                          comments, control characters, UTF-8, repeated leaves, deep nesting;
                          the file stays a well-formed trace
  --depth N               levels of the deep nesting (default 210)
  --truncated             the file stops in the middle of an element: not well-formed
  --foreign               well-formed, but the root is another element holding a trace
  --datetime TEXT         DateTime of the header (default "2023-11-21T14:05:09")
  --no-datetime           no DateTime on the header
  --no-date-children      no Date and Time children in the header
  --compact               no line breaks or indentation between elements
  --parameter-depth N     deepest level of nested parameters (default 3)
)";

} // namespace

using namespace zdtgen::tool;

int main(int argc, char** argv) {
    try {
        if (argc < 2)
            throw UsageError("no command");
        const std::string command = argv[1];
        if (command == "--help" || command == "-h" || command == "help") {
            std::cout << kUsage;
            return 0;
        }
        for (int i = 2; i < argc; ++i)
            if (std::strcmp(argv[i], "--help") == 0) {
                std::cout << kUsage;
                return 0;
            }
        if (command == "classic")
            return RunClassic(Arguments(argc, argv, 2));
        if (command == "flt")
            return RunFilter(Arguments(argc, argv, 2));
        if (command == "snp")
            return RunSnapshot(Arguments(argc, argv, 2));
        if (command == "xpvt")
            return RunXpvt(Arguments(argc, argv, 2));
        throw UsageError("unknown command: " + command);
    } catch (const UsageError& e) {
        std::cerr << "zdt-gen: " << e.what() << "\n" << kUsage;
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "zdt-gen: " << e.what() << "\n";
        return 1;
    }
}
