// Search of 7.02 traces.
//
// Every row event of the row pass is counted here with the same number of rows, hit
// or not. A page of the find sheet takes part when its findPressed is set; several
// may take part at once (the command line can set them), and a row hit by more than
// one page is marked once.
//
// Within a page, every text whose "On" flag is set must be contained in its value
// (case-sensitive substring on the cleaned slot; an empty text is always found). A
// non-empty minimum or maximum time stamp compares numerically with the row's
// TimeStamp read as a decimal number; a row with no time stamp fails it. "All" makes
// every test of the page hold and, as the sheet disables the radio groups with it,
// takes both choices of the group.
//
//   Open Close Logical Link: OpenLogicalLink / CloseLogicalLink rows, by the radio
//     group; link ~ LogicalLinkName, location ~ AccessKeyOfLocation, times.
//   Start Stop Diagcom Primitive: the "Start [..]" / "Stop [..]" head rows, by the
//     radio group; link, location ~ AccessKeyOfLocation, parent ~ the parent chain,
//     name ~ ShortName, primitiveType ~ ObjectType, id ~ ID, times.
//   Result: the "Result [..]" head row; primitiveType, primitiveId, link, parent.
//   Request / Response: the message of a request (response) passes when name
//     (response: name, address ~ LocationAddress, location ~ AccessKeyOfLocation),
//     message and times hold. The message is tested in the form the list shows it:
//     upper-case hex bytes joined by single blanks, over the whole message.
//     - Without "Parameter:", every message row of a passing message is marked.
//     - With "Parameter:" (the page's further flag) the page looks for parameters of
//       passing messages: a parameter row matches when paramName ~ ShortName,
//       dataType ~ the parameter's Type, value ~ the shown value and range ~ the
//       range's Type hold. The first message row of its owner is the pending row: it
//       is marked with the first matching parameter, before it, and once only.
//   Parameter: parameter rows of requests, responses or both (radio group); name ~
//     ShortName, value ~ the shown value, range ~ the range's Type. Its "Data Type:"
//     field is not tested: the sheet stores the "Value:" edit there. This page has no
//     further flag, so it marks parameter rows alone.
//
// Errors, "Called by", "DiagComPrimitive", trace and variant rows are counted only.

#include "xpvt/ConsumerFindInterface.h"

#include "xpvt/Xpvt702Routines.h"
#include "xpvt/XpvtDoc.h"

#include <cstdlib>
#include <string>

namespace ZDTAnalyzer::Xpvt {

namespace {

using Traits = SaxParserTraits<ConsumerFindInterface>;
using Criteria = XpvtFindCriteria702;

struct FindHooks702 {
    static void onRow(FindContext& context, const Event702& event);
};

using Routines = Xpvt702Routines<Traits, FindHooks702>;

const std::string& text(const FindContext& c, int slot) {
    return c.slots[static_cast<std::size_t>(slot)];
}

bool holds(bool on, const std::string& wanted, const std::string& value) {
    return !on || value.find(wanted) != std::string::npos;
}

bool holds(bool on, const std::string& wanted, const FindContext& c, int slot) {
    return holds(on, wanted, text(c, slot));
}

// A bound takes part when it is on and not empty; the row's time must then exist.
bool withinTimes(bool minOn, const std::string& min, bool maxOn, const std::string& max, const std::string& stamp) {
    const bool useMin = minOn && !min.empty();
    const bool useMax = maxOn && !max.empty();
    if (!useMin && !useMax)
        return true;
    if (stamp.empty())
        return false;
    const double time = std::strtod(stamp.c_str(), nullptr);
    if (useMin && time < std::strtod(min.c_str(), nullptr))
        return false;
    if (useMax && time > std::strtod(max.c_str(), nullptr))
        return false;
    return true;
}

// The whole message as the list shows it, lines joined.
const std::string& shownMessage(const BitFieldImpl& message) {
    static thread_local std::string shown;
    shown.resize(static_cast<std::size_t>(message.getLength()) * 3 + 1);
    shown.resize(message.formatBytes(shown.data(), 0, message.getLength(), ' '));
    return shown;
}

bool linkMatches(const Criteria::LogicalLinkSection& s, const FindContext& c, bool open) {
    if (!s.findPressed)
        return false;
    if (s.all)
        return true;
    const bool chosen = s.openAndClose || (open ? s.open : s.close);
    return chosen && holds(s.linkOn, s.link, c, Slot::LogicalLinkName) &&
           holds(s.locationOn, s.location, c, Slot::AccessKeyOfLocation) &&
           withinTimes(s.minTimeOn, s.minTime, s.maxTimeOn, s.maxTime, text(c, Slot::TimeStamp));
}

bool primitiveMatches(const Criteria::PrimitiveSection& s, const FindContext& c, bool start) {
    if (!s.findPressed)
        return false;
    if (s.all)
        return true;
    const bool chosen = s.startOrFinish || (start ? s.start : s.finish);
    return chosen && holds(s.linkOn, s.link, c, Slot::LogicalLinkName) &&
           holds(s.locationOn, s.location, c, Slot::AccessKeyOfLocation) &&
           holds(s.parentOn, s.parent, c, Slot::ParentChain) && holds(s.nameOn, s.name, c, Slot::ShortName) &&
           holds(s.primitiveTypeOn, s.primitiveType, c, Slot::ObjectType) &&
           holds(s.idOn, s.id, c, Slot::PrimitiveId) &&
           withinTimes(s.minTimeOn, s.minTime, s.maxTimeOn, s.maxTime, text(c, Slot::TimeStamp));
}

bool resultMatches(const Criteria::ResultSection& s, const FindContext& c) {
    if (!s.findPressed)
        return false;
    return s.all ||
           (holds(s.primitiveTypeOn, s.primitiveType, c, Slot::ObjectType) &&
            holds(s.primitiveIdOn, s.primitiveId, c, Slot::PrimitiveId) &&
            holds(s.linkOn, s.link, c, Slot::LogicalLinkName) && holds(s.parentOn, s.parent, c, Slot::ParentChain));
}

bool ownerPasses(const Criteria::RequestSection& s, const FindContext& c, const BitFieldImpl& message) {
    return s.all ||
           (holds(s.nameOn, s.name, c, Slot::RequestName) && holds(s.messageOn, s.message, shownMessage(message)) &&
            withinTimes(s.minTimeOn, s.minTime, s.maxTimeOn, s.maxTime, text(c, Slot::TimeStamp)));
}

bool ownerPasses(const Criteria::ResponseSection& s, const FindContext& c, const BitFieldImpl& message) {
    return s.all ||
           (holds(s.nameOn, s.name, c, Slot::ShortName) && holds(s.addressOn, s.address, c, Slot::LocationAddress) &&
            holds(s.locationOn, s.location, c, Slot::AccessKeyOfLocation) &&
            holds(s.messageOn, s.message, shownMessage(message)) &&
            withinTimes(s.minTimeOn, s.minTime, s.maxTimeOn, s.maxTime, text(c, Slot::TimeStamp)));
}

// The parameter part of the request and response pages.
template <typename Section> bool ownedParameterMatches(const Section& s, const FindContext& c) {
    return s.all ||
           (holds(s.paramNameOn, s.paramName, c, Slot::ShortName) &&
            holds(s.dataTypeOn, s.dataType, c, Slot::ParameterType) &&
            holds(s.valueOn, s.value, c, Slot::ValueAsString) && holds(s.rangeOn, s.range, c, Slot::RangeType));
}

bool parameterPageMatches(const Criteria::ParameterSection& s, const FindContext& c, bool request) {
    if (!s.findPressed)
        return false;
    if (s.all)
        return true;
    const bool chosen = s.requestOrResponse || (request ? s.request : s.response);
    return chosen && holds(s.nameOn, s.name, c, Slot::ShortName) && holds(s.valueOn, s.value, c, Slot::ValueAsString) &&
           holds(s.rangeOn, s.range, c, Slot::RangeType);
}

// A message: its rows are hits by themselves, or its first row waits for a parameter.
template <typename Section>
void onMessage(ConsumerFindInterface& consumer, const Section& s, const FindContext& c, const Event702& event,
               zdt::RowIndex firstRow) {
    const bool passes = s.findPressed && ownerPasses(s, c, *event.message);
    consumer.ownerMatches = passes && s.parameterEnabled;
    consumer.pendingRow = consumer.ownerMatches ? firstRow : zdt::NoRow;
    if (passes && !s.parameterEnabled)
        for (zdt::RowIndex row = firstRow; row < firstRow + event.rows; ++row)
            consumer.document->markFindResult(row);
}

template <typename Section>
void onParameter(ConsumerFindInterface& consumer, const Section& owner, const Criteria::ParameterSection& page,
                 const FindContext& c, bool request, zdt::RowIndex row) {
    const bool ownedHit =
        owner.findPressed && owner.parameterEnabled && consumer.ownerMatches && ownedParameterMatches(owner, c);
    if (!ownedHit && !parameterPageMatches(page, c, request))
        return;
    if (ownedHit && consumer.pendingRow >= 0) {
        consumer.document->markFindResult(consumer.pendingRow);
        consumer.pendingRow = zdt::NoRow;
    }
    consumer.document->markFindResult(row);
}

void FindHooks702::onRow(FindContext& c, const Event702& event) {
    ConsumerFindInterface& consumer = *c.consumer;
    // Every row counts, searched or not, or every later mark would land off its row.
    const zdt::RowIndex row = consumer.row;
    consumer.row += event.rows;
    if (consumer.criteria702 == nullptr)
        return;
    const Criteria& criteria = *consumer.criteria702;
    bool hit = false;
    switch (event.kind) {
    case Row702::OpenLogicalLink:
    case Row702::CloseLogicalLink:
        hit = linkMatches(criteria.logicalLinkSection, c, event.kind == Row702::OpenLogicalLink);
        break;
    case Row702::PrimitiveStart:
    case Row702::PrimitiveFinish:
        hit = primitiveMatches(criteria.primitiveSection, c, event.kind == Row702::PrimitiveStart);
        break;
    case Row702::PrimitiveResult:
        hit = resultMatches(criteria.resultSection, c);
        break;
    case Row702::RequestMessage:
        onMessage(consumer, criteria.requestSection, c, event, row);
        break;
    case Row702::ResponseMessage:
        onMessage(consumer, criteria.responseSection, c, event, row);
        break;
    case Row702::RequestParameter:
        onParameter(consumer, criteria.requestSection, criteria.parameterSection, c, true, row);
        break;
    case Row702::ResponseParameter:
        onParameter(consumer, criteria.responseSection, criteria.parameterSection, c, false, row);
        break;
    default:
        break;
    }
    if (hit)
        consumer.document->markFindResult(row);
}

} // namespace

// The header is not read by a search: its subtree is walked with no routine.
void SaxParserTraits<ConsumerFindInterface>::install702(Parser& parser) {
    Routines::install(parser);
}

} // namespace ZDTAnalyzer::Xpvt
