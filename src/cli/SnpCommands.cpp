#include "SnpCommands.h"

#include "StderrMessages.h"
#include "app/WellKnownPaths.h"
#include "snp/SnpDoc.h"

#include <csignal>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace {

using ZDTAnalyzer::SnpDoc;
using ZDTAnalyzer::SnpFindCriteria;

constexpr int InterruptedStatus = 130;

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void onInterrupt(int) { g_interrupted = 1; }

// Ctrl-C and termination only raise a flag: the parse then stops at its next block and
// the document and the per-run directory are removed on the normal way out.
void installInterruptHandlers() {
    struct sigaction action {};
    action.sa_handler = &onInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
    // A closed pipe shows as a failed write instead of killing the process.
    std::signal(SIGPIPE, SIG_IGN);
}

class InterruptProgress final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long, unsigned long long) override { return g_interrupted == 0; }
};

void requireFiles(const CliArguments& args, bool criteriaFollow) {
    if (args.files.empty() || (!criteriaFollow && args.files.size() != 1))
        throw UsageError{args.command + " takes one file"};
}

SnpFindCriteria parseCriteria(const std::vector<std::string>& pairs) {
    SnpFindCriteria c;
    const std::map<std::string, bool*> flags = {
        {"searchSnapShot", &c.searchSnapShot},         {"createdOn", &c.createdOn},
        {"longNameOn", &c.longNameOn},                 {"shortNameOn", &c.shortNameOn},
        {"searchLogicalLink", &c.searchLogicalLink},   {"linkNameOn", &c.linkNameOn},
        {"searchService", &c.searchService},           {"serviceNameOn", &c.serviceNameOn},
        {"searchComPrimitive", &c.searchComPrimitive}, {"comPrimitiveNameOn", &c.comPrimitiveNameOn},
        {"searchDtc", &c.searchDtc},                   {"dtcValueOn", &c.dtcValueOn},
        {"searchProcessValue", &c.searchProcessValue}, {"valueNameOn", &c.valueNameOn},
        {"valueUnitOn", &c.valueUnitOn},               {"valueTextOn", &c.valueTextOn},
    };
    const std::map<std::string, std::string*> texts = {
        {"created", &c.created},           {"longName", &c.longName},   {"shortName", &c.shortName},
        {"linkName", &c.linkName},         {"serviceName", &c.serviceName},
        {"comPrimitiveName", &c.comPrimitiveName},                      {"dtcValue", &c.dtcValue},
        {"valueName", &c.valueName},       {"valueUnit", &c.valueUnit}, {"valueText", &c.valueText},
    };
    for (const std::string& pair : pairs) {
        const auto equals = pair.find('=');
        if (equals == std::string::npos)
            throw UsageError{"find takes criteria as name=value, not \"" + pair + "\""};
        const std::string name = pair.substr(0, equals), value = pair.substr(equals + 1);
        if (const auto flag = flags.find(name); flag != flags.end()) {
            if (value != "0" && value != "1")
                throw UsageError{name + " takes 0 or 1, not \"" + value + "\""};
            *flag->second = value == "1";
        } else if (const auto text = texts.find(name); text != texts.end()) {
            *text->second = value;
        } else {
            throw UsageError{"unknown criterion " + name};
        }
    }
    return c;
}

bool writeOut(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

int printRows(SnpDoc& doc) {
    auto& rows = doc.container();
    std::string text;
    for (int row = 0; row < rows.rowCount(); ++row) {
        if (g_interrupted)
            return InterruptedStatus;
        const std::string stored = rows.readRow(row);
        text += std::to_string(row + 1);
        // Columns as stored: each closed by 0x01; what follows the last one (the
        // closing space) is not a column.
        std::size_t start = 0;
        for (std::size_t end; (end = stored.find('\x01', start)) != std::string::npos; start = end + 1) {
            text += '\t';
            text.append(stored, start, end - start);
        }
        text += '\n';
        if (text.size() >= (1u << 20)) {
            if (!writeOut(text))
                return 1;
            text.clear();
        }
    }
    if (!writeOut(text) || std::fflush(stdout) != 0)
        return 1;
    return 0;
}

int printInfo(const SnpDoc& doc) {
    using Dialog = SnpDoc::SessionInformationDialog;
    const Dialog info = doc.sessionInformation();
    std::printf("%s %s\n", Dialog::FileNameLabel, info.fileName.c_str());
    std::printf("%s %s\n", Dialog::DateLabel, info.date.c_str());
    std::printf("%s %s\n", Dialog::TimeLabel, info.time.c_str());
    std::printf("%s %s\n", Dialog::AuthorLabel, Dialog::Author);
    std::printf("Rows: %d\n", doc.container().rowCount());
    return 0;
}

int printFind(SnpDoc& doc, const SnpFindCriteria& criteria, zdt::MessageSink& messages,
              zdt::ProgressSink& progress) {
    if (!doc.find(criteria, &messages, &progress))
        return g_interrupted ? InterruptedStatus : 1;
    std::string text;
    for (const int row : doc.findResults())
        text += std::to_string(row + 1) + "\n";
    return writeOut(text) && std::fflush(stdout) == 0 ? 0 : 1;
}

int runOpened(const CliArguments& args, const std::string& swapDirectory) {
    StderrMessages messages;
    InterruptProgress progress;
    SnpDoc doc;
    if (!doc.OnOpenDocument(args.files[0], swapDirectory, &messages, &progress))
        return g_interrupted ? InterruptedStatus : 1;
    if (args.command == "rows")
        return printRows(doc);
    if (args.command == "info")
        return printInfo(doc);
    return printFind(doc, parseCriteria({args.files.begin() + 1, args.files.end()}), messages, progress);
}

} // namespace

int RunSnpCommand(const CliArguments& args) {
    if (args.command != "rows" && args.command != "info" && args.command != "find")
        throw UsageError{args.command + " does not read snapshot files"};
    requireFiles(args, args.command == "find");
    if (args.command == "find")
        parseCriteria({args.files.begin() + 1, args.files.end()}); // bad criteria: usage before any work
    installInterruptHandlers();
    zdt::SessionTempDirectory session;
    if (const auto failure = session.Create()) {
        std::fprintf(stderr, "%s\n", failure->text.c_str());
        return 1;
    }
    // The document, and with it its swap file, is gone before the directory goes.
    return runOpened(args, session.Path());
}
