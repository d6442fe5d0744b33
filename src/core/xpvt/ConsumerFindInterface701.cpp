#include "xpvt/ConsumerFindInterface.h"

#include "xpvt/Xpvt701Routines.h"
#include "xpvt/XpvtDoc.h"

#include <string>

namespace ZDTAnalyzer::Xpvt {

namespace {

using Traits = SaxParserTraits<ConsumerFindInterface>;

// The search pass of 7.01: every event advances the row counter by the rows the row
// pass makes for it, and marks the rows that match the criteria.
struct FindHooks701 {
    using ParserTraits = Traits;
    using Context = FindContext;
    // Counted once at each parameter's end, in closing order, without the levels the row
    // pass keeps: in a nested group a hit may therefore mark a neighbouring row of the
    // same group. Each parameter still counts one row, as in the row pass, so the rows
    // after the group keep their place.
    static constexpr bool NestsResponseParameters = false;

    static void onRow(Context& context, Row701 event);
    static void onDescriptionEnd(Context&) {}
};

using Routines = Xpvt701Routines<FindHooks701>;

// Case-sensitive substring test; an empty text is found everywhere.
bool contains(const FindContext& c, int slot, const std::string& wanted) {
    return c.slots[static_cast<std::size_t>(slot)].find(wanted) != std::string::npos;
}

bool primitiveMatches(const FindContext& c, const XpvtFindCriteria701& k) {
    if (!k.searchPrimitives)
        return false;
    return k.matchAll || (k.matchByName && contains(c, Slot::LogicalLinkName, k.nameText));
}

bool pduMatches(const FindContext& c, const XpvtFindCriteria701& k, bool sideSearched) {
    return (k.searchBothSides || sideSearched) && k.pduEnabled && contains(c, Slot::Pdu, k.pduText);
}

bool requestParameterMatches(const FindContext& c, const XpvtFindCriteria701& k) {
    if (!k.searchRequests || !k.parameterEnabled)
        return false;
    return contains(c, k.matchByName ? Slot::ShortName : Slot::Value, k.parameterText);
}

bool responseParameterMatches(const FindContext& c, const XpvtFindCriteria701& k) {
    if (!(k.searchBothSides || k.searchResponses) || !k.parameterEnabled)
        return false;
    return (k.matchByName && contains(c, Slot::ShortName, k.parameterText)) ||
           (k.parameterValueEnabled && contains(c, Slot::Value, k.parameterText));
}

// Marks `count` rows from the counter on when `matched`, then moves the counter past them.
void count(FindContext& c, zdt::RowCount rows, bool matched) {
    ConsumerFindInterface& consumer = *c.consumer;
    if (matched && consumer.document != nullptr)
        for (zdt::RowCount i = 0; i < rows; ++i)
            consumer.document->markFindResult(consumer.row + i);
    consumer.row += rows;
}

// The two rows of an error: a code hit marks the first, a severity hit the second.
void countError(FindContext& c, const XpvtFindCriteria701* k) {
    ConsumerFindInterface& consumer = *c.consumer;
    if (k != nullptr && k->errorEnabled && consumer.document != nullptr) {
        if (k->errorByCode) {
            if (contains(c, Slot::CodeDescription, k->errorCodeText) || contains(c, Slot::ShortName, k->errorCodeText))
                consumer.document->markFindResult(consumer.row);
        } else if (contains(c, Slot::Severity, k->errorSeverityText) ||
                   contains(c, Slot::SeverityInfo, k->errorSeverityText)) {
            consumer.document->markFindResult(consumer.row + 1);
        }
    }
    consumer.row += 2;
}

bool matches(const FindContext& c, const XpvtFindCriteria701* k, Row701 event) {
    if (k == nullptr)
        return false;
    switch (event) {
    case Row701::OpenComPrimitive:
    case Row701::CloseComPrimitive:
        return primitiveMatches(c, *k);
    case Row701::RequestName:
        return k->searchRequests && k->matchAll;
    case Row701::RequestPdu:
        return pduMatches(c, *k, k->searchRequests);
    case Row701::ResponsePdu:
        return pduMatches(c, *k, k->searchResponses);
    case Row701::RequestParameter:
        return requestParameterMatches(c, *k);
    case Row701::ResponseParameter:
        return responseParameterMatches(c, *k);
    case Row701::Result:
        return k->searchBothSides && k->matchAll;
    default:
        return false; // trace, link, ECU and state rows are never marked
    }
}

void FindHooks701::onRow(Context& c, Row701 event) {
    if (c.consumer == nullptr)
        return;
    const XpvtFindCriteria701* criteria = c.consumer->criteria701;
    switch (event) {
    case Row701::Error:
        countError(c, criteria);
        return;
    case Row701::RequestPdu:
    case Row701::ResponsePdu:
        count(c, Routines::pduPieceCount(c.slots[static_cast<std::size_t>(Slot::Pdu)]), matches(c, criteria, event));
        return;
    default:
        count(c, 1, matches(c, criteria, event));
        return;
    }
}

} // namespace

void SaxParserTraits<ConsumerFindInterface>::install701(Parser& parser) {
    Routines::install(parser);
}

} // namespace ZDTAnalyzer::Xpvt
