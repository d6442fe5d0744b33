#include "xpvt/FindSheet702Logic.h"

#include <array>

namespace ZDTAnalyzer::Find::XPVT_7_02 {

namespace {

// The sections' findPressed flags in page order.
std::array<bool*, PageCount> pressedFlags(XpvtFindCriteria702& c) {
    return {&c.logicalLinkSection.findPressed, &c.requestSection.findPressed, &c.responseSection.findPressed,
            &c.primitiveSection.findPressed,   &c.resultSection.findPressed,  &c.parameterSection.findPressed};
}

} // namespace

void beginRun(XpvtFindCriteria702& criteria) {
    for (bool* pressed : pressedFlags(criteria))
        *pressed = false;
}

void endRun(XpvtFindCriteria702& criteria) {
    const auto flags = pressedFlags(criteria);
    criteria.activePage = 0;
    for (int page = 0; page < PageCount; ++page) {
        if (*flags[static_cast<std::size_t>(page)]) {
            criteria.activePage = page;
            return;
        }
    }
}

int openingPage(const XpvtFindCriteria702& criteria) {
    return criteria.activePage >= 0 && criteria.activePage < PageCount ? criteria.activePage : 0;
}

ParameterPageTexts showParameterPage(const XpvtFindCriteria702::ParameterSection& section) {
    return ParameterPageTexts{section.name, section.dataType, section.dataType, section.range};
}

void collectParameterPage(const ParameterPageTexts& texts, XpvtFindCriteria702::ParameterSection& section) {
    section.name = texts.name;
    section.dataType = texts.dataType;
    section.dataType = texts.value;
    section.range = texts.range;
    section.nameOn = true;
    section.dataTypeOn = true;
    section.valueOn = true;
    section.rangeOn = true;
}

bool criteriaEnabled(bool all) {
    return !all;
}

bool parameterEditsEnabled(bool all, bool parameterEnabled) {
    return !all && parameterEnabled;
}

} // namespace ZDTAnalyzer::Find::XPVT_7_02
