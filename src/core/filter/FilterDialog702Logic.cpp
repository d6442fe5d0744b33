#include "filter/FilterDialog702Logic.h"

namespace ZDTAnalyzer::Filter::XPVT_7_02 {

namespace {

// A row's check follows the groups above it; its "Not" and edit need the check as well.
RowEnabled row(bool groupsOn, const TextCondition& condition) {
    return {groupsOn, groupsOn && condition.enabled};
}

} // namespace

FilterDialogEnabled filterDialogEnabled(const FilterCondition702& r, bool editMode) {
    FilterDialogEnabled e;
    e.logicalLink = row(r.includeOpenCloseLogicalLinks, r.logicalLink);
    e.accessKeyOfLocation = row(r.includeOpenCloseLogicalLinks, r.accessKeyOfLocation);
    e.primitiveLogicalLink = row(r.includeStartFinishPrimitives, r.primitiveLogicalLink);
    e.primitiveAccessKeyOfLocation = row(r.includeStartFinishPrimitives, r.primitiveAccessKeyOfLocation);
    e.parentDiagComPrimitive = row(r.includeStartFinishPrimitives, r.parentDiagComPrimitive);
    const bool results = r.includeResults;
    e.primitiveShortName = row(results, r.primitiveShortName);
    e.primitiveId = row(results, r.primitiveId);
    e.requestShortName = row(results, r.requestShortName);
    e.requestMessage = row(results, r.requestMessage);
    e.requestParameterFilter = results;
    e.requestParameterShortName = row(results && r.requestParameterFilter, r.requestParameterShortName);
    e.requestParameterValue = row(results && r.requestParameterFilter, r.requestParameterValue);
    e.responseShortName = row(results, r.responseShortName);
    e.responseMessage = row(results, r.responseMessage);
    e.responseParameterFilter = results;
    e.responseParameterShortName = row(results && r.responseParameterFilter, r.responseParameterShortName);
    e.responseParameterValue = row(results && r.responseParameterFilter, r.responseParameterValue);
    e.fileName = !editMode;
    return e;
}

CheckedName checkFilterName(const std::string& name, bool newMode, const std::string& filterDirectory,
                            const std::function<bool(const std::string& path)>& fileExists) {
    std::string path = filterDirectory + name;
    if (name.find(FilterExtension) == std::string::npos)
        path += FilterExtension;
    if (newMode && fileExists(path)) {
        std::string text = FilterExistsFormat;
        text.replace(text.find("%s"), 2, path);
        return {path, zdt::UserMessage{FilterExistsTitle, text, zdt::MessageIcon::Error}};
    }
    return {path, std::nullopt};
}

std::string newFilterFileName(const std::string& typedName) {
    return typedName + FilterExtension;
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
