#pragma once

#include "xpvt/XpvtFindCriteria.h"

#include <string>

// The bookkeeping of the 7.02 find sheet. Its pages work on the sections of the
// document's record directly, so what was typed comes back at the next search.
namespace ZDTAnalyzer::Find::XPVT_7_02 {

inline constexpr int PageCount = 6;

// Before the sheet shows: no page has pressed "Find" yet in this run.
void beginRun(XpvtFindCriteria702& criteria);

// After the sheet closed: the next run opens on the first page, in page order, whose
// "Find" was pressed, or on the first page when none was.
void endRun(XpvtFindCriteria702& criteria);

// The page the sheet opens on; a stored index outside the pages falls back to the first.
int openingPage(const XpvtFindCriteria702& criteria);

// The four edits of the Parameter page.
struct ParameterPageTexts {
    std::string name;
    std::string dataType;
    std::string value;
    std::string range;
};

// Both the "Data Type:" and the "Value:" edit show the section's dataType.
ParameterPageTexts showParameterPage(const XpvtFindCriteria702::ParameterSection& section);

// The "Value:" edit lands in dataType over what "Data Type:" stored there, value stays
// as it is (empty), and all four texts take part from now on.
void collectParameterPage(const ParameterPageTexts& texts, XpvtFindCriteria702::ParameterSection& section);

// "All" set disables every edit and radio that names a criterion.
bool criteriaEnabled(bool all);
// The four edits under the "Parameter:" box of the Request and Response pages.
bool parameterEditsEnabled(bool all, bool parameterEnabled);

} // namespace ZDTAnalyzer::Find::XPVT_7_02
