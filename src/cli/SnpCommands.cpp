#include "SnpCommands.h"

#include "StderrMessages.h"
#include "XmlDocCommands.h"
#include "snp/SnpDoc.h"

#include <cstdio>
#include <map>
#include <string>

namespace {

using namespace xmldoccli;
using ZDTAnalyzer::SnpDoc;
using ZDTAnalyzer::SnpFindCriteria;

SnpFindCriteria parseCriteria(const std::vector<std::string>& pairs) {
    SnpFindCriteria c;
    const std::map<std::string, bool*> flags = {
        {"searchSnapShot", &c.searchSnapShot},
        {"createdOn", &c.createdOn},
        {"longNameOn", &c.longNameOn},
        {"shortNameOn", &c.shortNameOn},
        {"searchLogicalLink", &c.searchLogicalLink},
        {"linkNameOn", &c.linkNameOn},
        {"searchService", &c.searchService},
        {"serviceNameOn", &c.serviceNameOn},
        {"searchComPrimitive", &c.searchComPrimitive},
        {"comPrimitiveNameOn", &c.comPrimitiveNameOn},
        {"searchDtc", &c.searchDtc},
        {"dtcValueOn", &c.dtcValueOn},
        {"searchProcessValue", &c.searchProcessValue},
        {"valueNameOn", &c.valueNameOn},
        {"valueUnitOn", &c.valueUnitOn},
        {"valueTextOn", &c.valueTextOn},
    };
    const std::map<std::string, std::string*> texts = {
        {"created", &c.created},     {"longName", &c.longName},       {"shortName", &c.shortName},
        {"linkName", &c.linkName},   {"serviceName", &c.serviceName}, {"comPrimitiveName", &c.comPrimitiveName},
        {"dtcValue", &c.dtcValue},   {"valueName", &c.valueName},     {"valueUnit", &c.valueUnit},
        {"valueText", &c.valueText},
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

int printFind(SnpDoc& doc, const SnpFindCriteria& criteria, zdt::MessageSink& messages, zdt::ProgressSink& progress) {
    if (!doc.find(criteria, &messages, &progress))
        return failureStatus();
    return printMarks(doc);
}

int runOpened(const CliArguments& args, const std::string& swapDirectory) {
    StderrMessages messages;
    InterruptProgress progress;
    SnpDoc doc;
    if (!doc.OnOpenDocument(args.files[0], swapDirectory, &messages, &progress))
        return failureStatus();
    if (args.command == "rows")
        return printRows(doc);
    if (args.command == "info")
        return printInfo(doc);
    return printFind(doc, parseCriteria({args.files.begin() + 1, args.files.end()}), messages, progress);
}

} // namespace

int RunSnpCommand(const CliArguments& args) {
    requireCommand(args, "snapshot files");
    if (args.command == "find")
        parseCriteria({args.files.begin() + 1, args.files.end()}); // bad criteria: usage before any work
    return runInSessionDirectory([&](const std::string& swapDirectory) { return runOpened(args, swapDirectory); });
}
