#include "XpvtCommands.h"

#include "StderrMessages.h"
#include "XmlDocCommands.h"
#include "XpvtFindArguments.h"
#include "xpvt/XpvtDoc.h"

#include <string>

namespace {

using namespace xmldoccli;
using ZDTAnalyzer::XpvtDoc;

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
    return printText(text);
}

int printFind(XpvtDoc& doc, const XpvtFindArguments& find, zdt::MessageSink& messages, zdt::ProgressSink& progress) {
    if (doc.is702())
        find.apply(doc.findCriteria702());
    else
        find.apply(doc.findCriteria701());
    if (!doc.find(&messages, &progress))
        return failureStatus();
    return printMarks(doc);
}

int runOpened(const CliArguments& args, const XpvtFindArguments& find, const std::string& swapDirectory) {
    StderrMessages messages;
    InterruptProgress progress;
    XpvtDoc doc;
    if (!doc.OnOpenDocument(args.files[0], swapDirectory, &messages, &progress))
        return failureStatus();
    if (args.command == "rows")
        return printRows(doc);
    if (args.command == "info")
        return printInfo(doc);
    find.requireSchema(doc.is702());
    return printFind(doc, find, messages, progress);
}

} // namespace

int RunXpvtCommand(const CliArguments& args) {
    requireCommand(args, "process value traces");
    // Bad criteria are a usage error before any work.
    const XpvtFindArguments find({args.files.begin() + 1, args.files.end()});
    return runInSessionDirectory(
        [&](const std::string& swapDirectory) { return runOpened(args, find, swapDirectory); });
}
