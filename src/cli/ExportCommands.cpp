#include "ExportCommands.h"

#include "CliOptions.h"
#include "app/DocumentRoute.h"
#include "app/WellKnownPaths.h"
#include "export/ConversionProxy.h"
#include "export/SnpConversion.h"
#include "export/XpvtNewConversion.h"
#include "export/XpvtOldConversion.h"
#include "xpvt/XpvtSchemaProbe.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using ZDTAnalyzer::ExportFormat;

struct ExportArguments {
    std::string input;
    std::string output;
    ExportFormat format = ExportFormat::Html;
    std::optional<char> listSeparator;
};

ExportFormat formatNamed(const std::string& name) {
    if (name == "html")
        return ExportFormat::Html;
    if (name == "rtf")
        return ExportFormat::Rtf;
    if (name == "csv")
        return ExportFormat::Csv;
    if (name == "pdf")
        return ExportFormat::Pdf;
    throw UsageError{"--to takes html, rtf, csv or pdf, not \"" + name + "\""};
}

char separatorNamed(const std::string& text) {
    if (text == ";" || text == ",")
        return text[0];
    throw UsageError{"--list-separator takes ';' or ',', not \"" + text + "\""};
}

constexpr const char* ExportSyntax = "zdt-cli export FILE --to html|rtf|csv|pdf OUT [--list-separator ';'|',']";

ExportArguments parseExportArguments(int argc, char** argv) {
    ExportArguments arguments;
    std::optional<ExportFormat> format;
    std::vector<std::string> files;
    for (int index = 2; index < argc; ++index) {
        const std::string argument = argv[index];
        const bool hasValue = index + 1 < argc;
        if (argument == "--to" || argument == "--list-separator") {
            if (!hasValue)
                throw UsageError{argument + " needs a value"};
            const std::string value = argv[++index];
            if (argument == "--to")
                format = formatNamed(value);
            else
                arguments.listSeparator = separatorNamed(value);
        } else if (argument.rfind("--", 0) == 0 && argument.size() > 2) {
            throw UsageError{"export does not know " + argument};
        } else {
            files.push_back(argument);
        }
    }
    if (!format)
        throw UsageError{"export needs --to html|rtf|csv|pdf"};
    if (files.size() != 2)
        throw UsageError{"export takes one FILE and one OUT"};
    arguments.format = *format;
    arguments.input = files[0];
    arguments.output = files[1];
    return arguments;
}

// Boxes become their title and text on standard error.
class StderrBoxes final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override {
        if (message.title.empty())
            std::fprintf(stderr, "%s\n", message.text.c_str());
        else
            std::fprintf(stderr, "%s\n%s\n", message.title.c_str(), message.text.c_str());
    }
    bool askYesNo(const zdt::UserMessage& question) override {
        showMessage(question);
        return false;
    }
};

// The control of the running export: an interrupt from the terminal cancels it, so the
// tool's process group ends and no partial output stays.
zdt::OperationControl* g_control = nullptr;

extern "C" void cancelExport(int /*signal*/) {
    if (g_control != nullptr)
        g_control->requestCancel();
}

std::unique_ptr<ZDTAnalyzer::Conversion> conversionFor(const ExportArguments& arguments,
                                                       ZDTAnalyzer::ConversionSettings settings) {
    const zdt::DocumentFamily family = zdt::FamilyForPath(arguments.input);
    if (family == zdt::DocumentFamily::Snp)
        return std::make_unique<ZDTAnalyzer::SnpConversion>(std::move(settings));
    if (family != zdt::DocumentFamily::Xpvt)
        return nullptr;
    if (ZDTAnalyzer::ProbeXpvtIs702(arguments.input, settings.temporaryDirectory))
        return std::make_unique<ZDTAnalyzer::XpvtNewConversion>(std::move(settings));
    return std::make_unique<ZDTAnalyzer::XpvtOldConversion>(std::move(settings));
}

int runExport(const ExportArguments& arguments, const std::string& temporaryDirectory) {
    StderrBoxes boxes;
    if (!std::ifstream(arguments.input, std::ios::binary)) {
        std::fprintf(stderr, "Can't open %s: %s\n", arguments.input.c_str(), std::strerror(errno));
        return 1;
    }
    ZDTAnalyzer::ConversionSettings settings;
    settings.temporaryDirectory = temporaryDirectory;
    settings.listSeparator = arguments.listSeparator.value_or(ZDTAnalyzer::EnvironmentListSeparator());
    const std::unique_ptr<ZDTAnalyzer::Conversion> conversion = conversionFor(arguments, settings);
    // A kind without conversions refuses through the proxy, as the desktop's list does.
    ZDTAnalyzer::ConversionProxy proxy;
    proxy.setTarget(conversion.get());

    zdt::OperationControl control;
    g_control = &control;
    std::signal(SIGINT, cancelExport);
    std::signal(SIGTERM, cancelExport);
    const zdt::OperationOutcome outcome = zdt::RunOperation(
        ZDTAnalyzer::ConversionJob(proxy, arguments.format, arguments.input, arguments.output), control);
    g_control = nullptr;
    for (const zdt::UserMessage& message : outcome.messages)
        boxes.showMessage(message);
    if (outcome.status == zdt::OperationStatus::Cancelled)
        std::fprintf(stderr, "Export cancelled; nothing was written.\n");
    return outcome.status == zdt::OperationStatus::Done ? 0 : 1;
}

} // namespace

bool IsExportCommand(const char* command) {
    return std::strcmp(command, "export") == 0;
}

int RunExportCommand(int argc, char** argv) {
    ExportArguments arguments;
    try {
        arguments = parseExportArguments(argc, argv);
    } catch (UsageError& error) {
        error.text += std::string("\n  ") + ExportSyntax;
        throw;
    }
    zdt::SessionTempDirectory session;
    if (const auto failure = session.Create()) {
        std::fprintf(stderr, "%s\n%s\n", failure->title.c_str(), failure->text.c_str());
        return 1;
    }
    return runExport(arguments, session.Path());
}
