#include "XpvtFindArguments.h"

#include "CliOptions.h"

#include <map>
#include <set>
#include <tuple>
#include <variant>

namespace {

using ZDTAnalyzer::XpvtFindCriteria701;
using ZDTAnalyzer::XpvtFindCriteria702;
using FieldRef = std::variant<bool*, std::string*>;
using FieldMap = std::map<std::string, FieldRef>;

FieldMap fieldsOf(XpvtFindCriteria701& c) {
    return {
        {"searchPrimitives", &c.searchPrimitives},
        {"searchRequests", &c.searchRequests},
        {"searchResponses", &c.searchResponses},
        {"searchBothSides", &c.searchBothSides},
        {"matchAll", &c.matchAll},
        {"matchByName", &c.matchByName},
        {"nameText", &c.nameText},
        {"pduEnabled", &c.pduEnabled},
        {"pduText", &c.pduText},
        {"parameterEnabled", &c.parameterEnabled},
        {"parameterValueEnabled", &c.parameterValueEnabled},
        {"parameterText", &c.parameterText},
        {"errorEnabled", &c.errorEnabled},
        {"errorByCode", &c.errorByCode},
        {"errorCodeText", &c.errorCodeText},
        {"errorBySeverity", &c.errorBySeverity},
        {"errorSeverityText", &c.errorSeverityText},
    };
}

// Adds "Section.name" and "Section.nameOn" for each text field of a section.
template <typename Section>
void addTexts(FieldMap& map, const std::string& section, Section& s,
              std::initializer_list<std::tuple<const char*, bool Section::*, std::string Section::*>> texts) {
    for (const auto& [name, on, text] : texts) {
        map.emplace(section + "." + name + "On", &(s.*on));
        map.emplace(section + "." + name, &(s.*text));
    }
}

template <typename Section>
void addFlags(FieldMap& map, const std::string& section, Section& s,
              std::initializer_list<std::pair<const char*, bool Section::*>> flags) {
    for (const auto& [name, flag] : flags)
        map.emplace(section + "." + name, &(s.*flag));
    map.emplace(section + ".all", &s.all);
    map.emplace(section + ".findPressed", &s.findPressed);
}

// Every section but the result's has a time window.
template <typename S> void addTimes(FieldMap& map, const std::string& name, S& s) {
    addTexts<S>(map, name, s, {{"minTime", &S::minTimeOn, &S::minTime}, {"maxTime", &S::maxTimeOn, &S::maxTime}});
}

void addLogicalLink(FieldMap& map, XpvtFindCriteria702::LogicalLinkSection& s) {
    using S = XpvtFindCriteria702::LogicalLinkSection;
    const std::string name = "LogicalLinkSection";
    addTimes(map, name, s);
    addTexts<S>(map, name, s, {{"link", &S::linkOn, &S::link}, {"location", &S::locationOn, &S::location}});
    addFlags<S>(map, name, s, {{"open", &S::open}, {"close", &S::close}, {"openAndClose", &S::openAndClose}});
}

// The request and response sections share their name, message, times and parameter part.
template <typename S> void addMessageSection(FieldMap& map, const std::string& name, S& s) {
    addTexts<S>(map, name, s, {{"name", &S::nameOn, &S::name}, {"message", &S::messageOn, &S::message}});
    addTimes(map, name, s);
    addTexts<S>(map, name, s,
                {{"paramName", &S::paramNameOn, &S::paramName},
                 {"dataType", &S::dataTypeOn, &S::dataType},
                 {"value", &S::valueOn, &S::value},
                 {"range", &S::rangeOn, &S::range}});
    addFlags<S>(map, name, s, {{"parameterEnabled", &S::parameterEnabled}});
}

void addResponse(FieldMap& map, XpvtFindCriteria702::ResponseSection& s) {
    using S = XpvtFindCriteria702::ResponseSection;
    const std::string name = "ResponseSection";
    addMessageSection(map, name, s);
    addTexts<S>(map, name, s, {{"address", &S::addressOn, &S::address}, {"location", &S::locationOn, &S::location}});
}

void addPrimitive(FieldMap& map, XpvtFindCriteria702::PrimitiveSection& s) {
    using S = XpvtFindCriteria702::PrimitiveSection;
    const std::string name = "PrimitiveSection";
    addTexts<S>(map, name, s,
                {{"link", &S::linkOn, &S::link},
                 {"location", &S::locationOn, &S::location},
                 {"parent", &S::parentOn, &S::parent},
                 {"name", &S::nameOn, &S::name},
                 {"primitiveType", &S::primitiveTypeOn, &S::primitiveType},
                 {"id", &S::idOn, &S::id}});
    addTimes(map, name, s);
    addFlags<S>(map, name, s, {{"start", &S::start}, {"finish", &S::finish}, {"startOrFinish", &S::startOrFinish}});
}

void addResult(FieldMap& map, XpvtFindCriteria702::ResultSection& s) {
    using S = XpvtFindCriteria702::ResultSection;
    const std::string name = "ResultSection";
    addTexts<S>(map, name, s,
                {{"primitiveType", &S::primitiveTypeOn, &S::primitiveType},
                 {"primitiveId", &S::primitiveIdOn, &S::primitiveId},
                 {"link", &S::linkOn, &S::link},
                 {"parent", &S::parentOn, &S::parent}});
    addFlags<S>(map, name, s, {});
}

void addParameter(FieldMap& map, XpvtFindCriteria702::ParameterSection& s) {
    using S = XpvtFindCriteria702::ParameterSection;
    const std::string name = "ParameterSection";
    addTexts<S>(map, name, s,
                {{"name", &S::nameOn, &S::name},
                 {"dataType", &S::dataTypeOn, &S::dataType},
                 {"value", &S::valueOn, &S::value},
                 {"range", &S::rangeOn, &S::range}});
    addFlags<S>(map, name, s,
                {{"request", &S::request}, {"response", &S::response}, {"requestOrResponse", &S::requestOrResponse}});
}

FieldMap fieldsOf(XpvtFindCriteria702& c) {
    FieldMap map;
    addLogicalLink(map, c.logicalLinkSection);
    addMessageSection(map, "RequestSection", c.requestSection);
    addResponse(map, c.responseSection);
    addPrimitive(map, c.primitiveSection);
    addResult(map, c.resultSection);
    addParameter(map, c.parameterSection);
    return map;
}

bool parseBool(const std::string& name, const std::string& value) {
    if (value == "1" || value == "true")
        return true;
    if (value == "0" || value == "false")
        return false;
    throw UsageError{name + " takes 0, 1, true or false, not \"" + value + "\""};
}

void assign(const FieldMap& fields, const std::string& name, const std::string& value) {
    const auto field = fields.find(name);
    if (field == fields.end())
        throw UsageError{"unknown criterion " + name};
    if (bool* const* flag = std::get_if<bool*>(&field->second))
        **flag = parseBool(name, value);
    else
        *std::get<std::string*>(field->second) = value;
}

std::string sectionOf(const std::string& name) {
    return name.substr(0, name.find('.'));
}

} // namespace

XpvtFindArguments::XpvtFindArguments(const std::vector<std::string>& pairs) {
    for (const std::string& pair : pairs) {
        const auto equals = pair.find('=');
        if (equals == std::string::npos)
            throw UsageError{"find takes criteria as name=value, not \"" + pair + "\""};
        m_pairs.emplace_back(pair.substr(0, equals), pair.substr(equals + 1));
    }
    // Every name and value is tried on scratch records, so nothing fails after the open.
    XpvtFindCriteria701 scratch701;
    XpvtFindCriteria702 scratch702;
    for (const auto& [name, value] : m_pairs) {
        const bool sectioned = name.find('.') != std::string::npos;
        (sectioned ? m_names702 : m_names701) = true;
        if (sectioned)
            assign(fieldsOf(scratch702), name, value);
        else
            assign(fieldsOf(scratch701), name, value);
    }
    if (m_names701 && m_names702)
        throw UsageError{"find takes the criteria of one schema: field=value for 7.01, Section.field=value for 7.02"};
}

void XpvtFindArguments::requireSchema(bool is702) const {
    if (is702 && m_names701)
        throw UsageError{"this file has schema 7.02: give its criteria as Section.field=value"};
    if (!is702 && m_names702)
        throw UsageError{"this file has schema 7.01: give its criteria as field=value"};
}

void XpvtFindArguments::apply(XpvtFindCriteria701& criteria) const {
    const FieldMap fields = fieldsOf(criteria);
    for (const auto& [name, value] : m_pairs)
        assign(fields, name, value);
}

void XpvtFindArguments::apply(XpvtFindCriteria702& criteria) const {
    const FieldMap fields = fieldsOf(criteria);
    std::set<std::string> named, pressedGiven;
    for (const auto& [name, value] : m_pairs) {
        assign(fields, name, value);
        named.insert(sectionOf(name));
        if (name.ends_with(".findPressed"))
            pressedGiven.insert(sectionOf(name));
    }
    for (const std::string& section : named)
        if (!pressedGiven.contains(section))
            assign(fields, section + ".findPressed", "1");
}
