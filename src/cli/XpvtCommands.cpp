#include "XpvtCommands.h"

#include "StderrMessages.h"
#include "XpvtFindArguments.h"
#include "app/WellKnownPaths.h"
#include "xpvt/XpvtDoc.h"

#include <csignal>
#include <cstdio>
#include <string>

namespace {

using ZDTAnalyzer::XpvtDoc;

constexpr int InterruptedStatus = 130;

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void onXpvtInterrupt(int) {
    g_interrupted = 1;
}

// Ctrl-C and termination only raise a flag: the parse then stops at its next block and
// the document and the per-run directory are removed on the normal way out.
void installInterruptHandlers() {
    struct sigaction action {};
    action.sa_handler = &onXpvtInterrupt;
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

bool writeOut(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

int printRows(XpvtDoc& doc) {
    auto& rows = doc.container();
    std::string text;
    for (int row = 0; row < rows.rowCount(); ++row) {
        if (g_interrupted)
            return InterruptedStatus;
        const std::string stored = rows.readRow(row);
        text += std::to_string(row + 1);
        // Fields as stored, the flags first: each closed by 0x01; what follows the last
        // one (the closing space) is not a field.
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
    return writeOut(text) && std::fflush(stdout) == 0 ? 0 : 1;
}

// The labels of the session information dialog; its last box shows the database
// access key although it is labelled as the logical link.
int printInfo(XpvtDoc& doc) {
    const XpvtDoc::Description& d = doc.description();
    std::string text;
    const auto line = [&text](const char* label, const std::string& value) {
        text += label;
        text += ' ';
        text += value;
        text += '\n';
    };
    line("Title:", d.Title);
    line("Schema:", d.Schema);
    line("Product version:", d.ProductVersion);
    line("Date:", d.Date);
    line("Time:", d.Time);
    line("Author:", d.Author);
    line("Comment:", d.Comment);
    line("Project Shortname:", d.Project);
    line("Vehicle information table Shortname:", d.VehicleInformationTable);
    line("LogicalLink:", d.DatabaseAccessKey);
    text += "Rows: " + std::to_string(doc.container().rowCount()) + "\n";
    return writeOut(text) && std::fflush(stdout) == 0 ? 0 : 1;
}

int printFind(XpvtDoc& doc, const XpvtFindArguments& find, zdt::MessageSink& messages, zdt::ProgressSink& progress) {
    if (doc.is702())
        find.apply(doc.findCriteria702());
    else
        find.apply(doc.findCriteria701());
    if (!doc.find(&messages, &progress))
        return g_interrupted ? InterruptedStatus : 1;
    std::string text;
    for (const int row : doc.findResults())
        text += std::to_string(row + 1) + "\n";
    return writeOut(text) && std::fflush(stdout) == 0 ? 0 : 1;
}

int runOpened(const CliArguments& args, const XpvtFindArguments& find, const std::string& swapDirectory) {
    StderrMessages messages;
    InterruptProgress progress;
    XpvtDoc doc;
    if (!doc.OnOpenDocument(args.files[0], swapDirectory, &messages, &progress))
        return g_interrupted ? InterruptedStatus : 1;
    if (args.command == "rows")
        return printRows(doc);
    if (args.command == "info")
        return printInfo(doc);
    find.requireSchema(doc.is702());
    return printFind(doc, find, messages, progress);
}

} // namespace

int RunXpvtCommand(const CliArguments& args) {
    if (args.command != "rows" && args.command != "info" && args.command != "find")
        throw UsageError{args.command + " does not read process value traces"};
    if (args.files.empty() || (args.command != "find" && args.files.size() != 1))
        throw UsageError{args.command + " takes one file"};
    // Bad criteria are a usage error before any work.
    const XpvtFindArguments find({args.files.begin() + 1, args.files.end()});
    installInterruptHandlers();
    zdt::SessionTempDirectory session;
    if (const auto failure = session.Create()) {
        std::fprintf(stderr, "%s\n", failure->text.c_str());
        return 1;
    }
    // The document, and with it its swap file, is gone before the directory goes.
    return runOpened(args, find, session.Path());
}
