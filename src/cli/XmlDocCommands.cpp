#include "XmlDocCommands.h"

#include "app/WellKnownPaths.h"

#include <csignal>
#include <cstdio>

namespace xmldoccli {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void onInterrupt(int) {
    g_interrupted = 1;
}

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

bool writeOut(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

} // namespace

bool interrupted() {
    return g_interrupted != 0;
}

void requireCommand(const CliArguments& args, const std::string& family) {
    if (args.command != "rows" && args.command != "info" && args.command != "find")
        throw UsageError{args.command + " does not read " + family};
    if (args.files.empty() || (args.command != "find" && args.files.size() != 1))
        throw UsageError{args.command + " takes one file"};
}

int runInSessionDirectory(const std::function<int(const std::string& swapDirectory)>& run) {
    installInterruptHandlers();
    zdt::SessionTempDirectory session;
    if (const auto failure = session.Create()) {
        std::fprintf(stderr, "%s\n", failure->text.c_str());
        return 1;
    }
    return run(session.Path());
}

int failureStatus() {
    return interrupted() ? InterruptedStatus : 1;
}

int printRows(ZDTAnalyzer::BaseDoc& doc) {
    auto& rows = doc.container();
    std::string text;
    for (zdt::RowIndex row = 0; row < rows.rowCount(); ++row) {
        if (interrupted())
            return InterruptedStatus;
        const std::string stored = rows.readRow(row);
        text += std::to_string(row + 1);
        // Each field is closed by 0x01; what follows the last one (the closing space) is
        // not a field.
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
    return printText(text);
}

int printMarks(const ZDTAnalyzer::BaseDoc& doc) {
    std::string text;
    for (const zdt::RowIndex row : doc.findResults())
        text += std::to_string(row + 1) + "\n";
    return printText(text);
}

int printText(const std::string& text) {
    return writeOut(text) && std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace xmldoccli
