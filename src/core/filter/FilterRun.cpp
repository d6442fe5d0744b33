#include "filter/FilterRun.h"

#include "filter/FilterConditionMap.h"
#include "filter/FilterXQuery701.h"
#include "filter/FilterXQuery702.h"
#include "filter/PvfltFile.h"
#include "filter/ScratchDirectory.h"
#include "filter/SnpFilterQuery.h"
#include "filter/XQueryEngine.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <unistd.h>
#include <vector>

namespace ZDTAnalyzer::Filter {

namespace {

namespace fs = std::filesystem;

using QueryBuilder = std::function<std::string(const std::string& plainDocumentPath)>;

struct ErrorBox {
    const char* title;
    const char* format;
};

std::string formatted(const char* format, const std::string& text) {
    std::string message = format;
    const std::size_t at = message.find("%s");
    if (at != std::string::npos)
        message.replace(at, 2, text);
    return message;
}

zdt::OperationStatus fail(const ErrorBox& box, const std::string& text, zdt::MessageSink& messages) {
    messages.showMessage({box.title, formatted(box.format, text), zdt::MessageIcon::Error});
    return zdt::OperationStatus::Failed;
}

// An empty file of a fresh name in the output's directory, so the final rename stays on
// one file system.
std::optional<std::string> makePartialBeside(const std::string& outputPath) {
    const fs::path output(outputPath);
    fs::path directory = output.parent_path();
    if (directory.empty())
        directory = ".";
    std::string pattern = (directory / ("." + output.filename().string() + ".partXXXXXX")).string();
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const int fd = ::mkstemp(buffer.data());
    if (fd < 0)
        return std::nullopt;
    ::close(fd);
    return std::string(buffer.data());
}

void removeQuietly(const std::string& path) {
    std::error_code error;
    fs::remove(path, error);
}

zdt::OperationStatus runIntoFile(const FilterRunTarget& target, const QueryBuilder& buildQuery, const ErrorBox& box,
                                 zdt::MessageSink& messages, zdt::OperationControl& control) {
    if (control.isCancelRequested())
        return zdt::OperationStatus::Cancelled;
    const std::optional<ScratchDirectory> scratch = ScratchDirectory::create(target.scratchParent);
    if (!scratch)
        return fail(box, std::string(EngineErrorPrefix) + "No temporary directory for the query.\n", messages);
    const std::string plainDocument = scratch->plainDocumentPath(target.documentPath);
    const std::optional<std::string> partial = makePartialBeside(target.outputPath);
    if (!partial)
        return fail(box, "Could not write the result to " + target.outputPath, messages);

    const XQueryRunResult result = runXQueryToFile(buildQuery(plainDocument), plainDocument, *partial, &control);
    if (!result.succeeded) {
        removeQuietly(*partial);
        if (control.isCancelRequested())
            return zdt::OperationStatus::Cancelled;
        return fail(box, result.errorText, messages);
    }
    std::error_code error;
    fs::rename(*partial, target.outputPath, error);
    if (error) {
        removeQuietly(*partial);
        return fail(box, "Could not write the result to " + target.outputPath, messages);
    }
    return zdt::OperationStatus::Done;
}

} // namespace

std::string couldNotLoadFilterText(const std::string& filterPath) {
    return "Could not load filter conditions from file: " + filterPath + " !";
}

zdt::OperationStatus runFilter701(const FilterRunTarget& target, const std::string& filterPath,
                                  zdt::MessageSink& messages, zdt::OperationControl& control) {
    const ErrorBox box{Filter701ErrorTitle, Filter701ErrorFormat};
    XPVT_7_01::FilterConditionMap conditions;
    if (!XPVT_7_01::readFilterFileForRun(filterPath, conditions) || !XPVT_7_01::holdsEveryCondition(conditions))
        return fail(box, couldNotLoadFilterText(filterPath), messages);
    return runIntoFile(
        target, [&](const std::string& document) { return XPVT_7_01::buildFilterXQuery701(document, conditions); }, box,
        messages, control);
}

zdt::OperationStatus runFilter702(const FilterRunTarget& target, const XPVT_7_02::FilterCondition702& record,
                                  zdt::MessageSink& messages, zdt::OperationControl& control) {
    return runIntoFile(
        target,
        [&](const std::string& document) {
            return XPVT_7_02::buildFilterXQuery702(document, record, XPVT_7_02::MultiValueTests::AnyValue);
        },
        {Filter702ErrorTitle, FilterErrorFormat}, messages, control);
}

zdt::OperationStatus listSnapshotServices(const std::string& documentPath, const std::string& scratchParent,
                                          std::set<std::string>& names, zdt::MessageSink& messages,
                                          zdt::OperationControl& control) {
    const ErrorBox box{SnpServiceListErrorTitle, FilterErrorFormat};
    if (control.isCancelRequested())
        return zdt::OperationStatus::Cancelled;
    const std::optional<ScratchDirectory> scratch = ScratchDirectory::create(scratchParent);
    if (!scratch)
        return fail(box, std::string(EngineErrorPrefix) + "No temporary directory for the query.\n", messages);
    const std::string plainDocument = scratch->plainDocumentPath(documentPath);
    const XQueryRunResult result =
        runXQueryToString(SNP::buildServiceListQuery(plainDocument), plainDocument, &control);
    if (!result.succeeded) {
        if (control.isCancelRequested())
            return zdt::OperationStatus::Cancelled;
        return fail(box, result.errorText, messages);
    }
    names = SNP::splitServiceNames(result.resultText);
    return zdt::OperationStatus::Done;
}

zdt::OperationStatus runSnapshotFilter(const FilterRunTarget& target, const std::vector<std::string>& chosenNames,
                                       zdt::MessageSink& messages, zdt::OperationControl& control) {
    return runIntoFile(
        target, [&](const std::string& document) { return SNP::buildSnapshotFilterQuery(document, chosenNames); },
        {SnpFilterErrorTitle, FilterErrorFormat}, messages, control);
}

} // namespace ZDTAnalyzer::Filter
