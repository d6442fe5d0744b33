#include "FilterCommands.h"

#include "CliOptions.h"
#include "FilterArguments.h"
#include "StderrMessages.h"
#include "XmlDocCommands.h"
#include "app/DocumentRoute.h"
#include "filter/FilterCondition702.h"
#include "filter/FilterRun.h"
#include "filter/FilterXQuery701.h"
#include "filter/FilterXQuery702.h"
#include "filter/PvfltFile.h"
#include "filter/SnpFilterQuery.h"
#include "xpvt/XpvtSchemaProbe.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using namespace ZDTAnalyzer::Filter;
using ZDTAnalyzer::probeXpvtSchema;
using ZDTAnalyzer::XpvtSchema;
using namespace xmldoccli;

// Ctrl-C cancels the running operation: the engine is killed and nothing stays at OUT.
class CancelOnInterrupt {
public:
    explicit CancelOnInterrupt(zdt::OperationControl& control)
        : m_watcher([this, &control] {
              while (!m_done.load()) {
                  if (interrupted())
                      control.requestCancel();
                  std::this_thread::sleep_for(std::chrono::milliseconds(50));
              }
          }) {}
    ~CancelOnInterrupt() {
        m_done.store(true);
        m_watcher.join();
    }
    CancelOnInterrupt(const CancelOnInterrupt&) = delete;
    CancelOnInterrupt& operator=(const CancelOnInterrupt&) = delete;

private:
    std::atomic<bool> m_done{false};
    std::thread m_watcher;
};

int statusOf(zdt::OperationStatus status) {
    switch (status) {
    case zdt::OperationStatus::Done:
        return 0;
    case zdt::OperationStatus::Cancelled:
        return InterruptedStatus;
    case zdt::OperationStatus::Failed:
        break;
    }
    return failureStatus();
}

void showFailure(zdt::MessageSink& messages, const char* title, const char* format, const std::string& text) {
    std::string message = format;
    message.replace(message.find("%s"), 2, text);
    messages.showMessage({title, message, zdt::MessageIcon::Error});
}

// The schema must be the one the filter file is made for; the document decides it.
bool checkSchema(const FilterArguments& args, const std::string& swapDirectory, zdt::MessageSink& messages) {
    const std::optional<XpvtSchema> schema = probeXpvtSchema(args.file, swapDirectory, messages);
    if (!schema)
        return false;
    if (!args.pvflt.empty() && *schema == XpvtSchema::V702)
        throw UsageError{"--pvflt is a 7.01 filter, and " + args.file + " is a 7.02 trace: use --pvflt2"};
    if (!args.pvflt2.empty() && *schema == XpvtSchema::V701)
        throw UsageError{"--pvflt2 is a 7.02 filter, and " + args.file + " is a 7.01 trace: use --pvflt"};
    return true;
}

bool loadRecord702(const std::string& path, XPVT_7_02::FilterCondition702& record, zdt::MessageSink& messages) {
    if (XPVT_7_02::loadFilter702(path, record))
        return true;
    showFailure(messages, Filter702ErrorTitle, FilterErrorFormat, couldNotLoadFilterText(path));
    return false;
}

int queryXpvt(const FilterArguments& args, const std::string& swapDirectory, StderrMessages& messages) {
    if (!checkSchema(args, swapDirectory, messages))
        return 1;
    if (!args.pvflt.empty()) {
        XPVT_7_01::FilterConditionMap conditions;
        if (!XPVT_7_01::readFilterFileForRun(args.pvflt, conditions)) {
            showFailure(messages, Filter701ErrorTitle, Filter701ErrorFormat, couldNotLoadFilterText(args.pvflt));
            return 1;
        }
        return printText(XPVT_7_01::buildFilterXQuery701(args.file, conditions));
    }
    XPVT_7_02::FilterCondition702 record;
    if (!loadRecord702(args.pvflt2, record, messages))
        return 1;
    return printText(XPVT_7_02::buildFilterXQuery702(args.file, record));
}

int filterXpvt(const FilterArguments& args, const std::string& swapDirectory, StderrMessages& messages,
               zdt::OperationControl& control) {
    if (!checkSchema(args, swapDirectory, messages))
        return 1;
    const FilterRunTarget target{args.file, args.output, swapDirectory};
    if (!args.pvflt.empty())
        return statusOf(runFilter701(target, args.pvflt, messages, control));
    XPVT_7_02::FilterCondition702 record;
    if (!loadRecord702(args.pvflt2, record, messages))
        return 1;
    return statusOf(runFilter702(target, record, messages, control));
}

// The names the dialog would apply: those given, none, or every service of the file.
std::optional<std::vector<std::string>> chosenServices(const FilterArguments& args, const std::string& scratch,
                                                       zdt::MessageSink& messages, zdt::OperationControl& control,
                                                       int& status) {
    if (args.namesServices())
        return std::vector<std::string>(args.services.begin(), args.services.end());
    std::set<std::string> all;
    const zdt::OperationStatus listed = listSnapshotServices(args.file, scratch, all, messages, control);
    if (listed != zdt::OperationStatus::Done) {
        status = statusOf(listed);
        return std::nullopt;
    }
    return std::vector<std::string>(all.begin(), all.end());
}

int runSnp(const FilterArguments& args, const std::string& scratch, StderrMessages& messages,
           zdt::OperationControl& control) {
    if (args.command == "query" && args.listServices)
        return printText(SNP::buildServiceListQuery(args.file));
    if (args.command == "services") {
        std::set<std::string> names;
        const zdt::OperationStatus listed = listSnapshotServices(args.file, scratch, names, messages, control);
        if (listed != zdt::OperationStatus::Done)
            return statusOf(listed);
        std::string text;
        for (const std::string& name : names)
            text += name + "\n";
        return printText(text);
    }
    int status = 0;
    const auto chosen = chosenServices(args, scratch, messages, control, status);
    if (!chosen)
        return status;
    if (args.command == "query")
        return printText(SNP::buildSnapshotFilterQuery(args.file, *chosen));
    return statusOf(runSnapshotFilter({args.file, args.output, scratch}, *chosen, messages, control));
}

int run(const FilterArguments& args, const std::string& sessionDirectory) {
    StderrMessages messages;
    zdt::OperationControl control;
    CancelOnInterrupt cancelOnInterrupt(control);
    if (zdt::FamilyForPath(args.file) == zdt::DocumentFamily::Snp)
        return runSnp(args, sessionDirectory, messages, control);
    if (args.command == "query")
        return queryXpvt(args, sessionDirectory, messages);
    return filterXpvt(args, sessionDirectory, messages, control);
}

} // namespace

bool IsFilterCommand(const char* name) {
    return std::strcmp(name, "query") == 0 || std::strcmp(name, "filter") == 0 || std::strcmp(name, "services") == 0;
}

int RunFilterCommand(int argc, char** argv) {
    try {
        const FilterArguments args = ParseFilterArguments(argc, argv);
        return runInSessionDirectory([&](const std::string& sessionDirectory) { return run(args, sessionDirectory); });
    } catch (const UsageError& error) {
        std::fprintf(stderr, "zdt-cli: %s\n\n%s", error.text.c_str(), FilterUsageText());
        return 2;
    }
}
