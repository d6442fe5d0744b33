#pragma once

#include "common/RowTypes.h"
#include "xmldoc/PrintableOnly.h"
#include "xpvt/BitFieldImpl.h"
#include "xpvt/XpvtElements.h"
#include "xpvt/XpvtHeaderRoutines.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>

namespace ZDTAnalyzer::Xpvt {

// The moments of a 7.02 trace at which the row pass makes rows and the search pass
// counts them. Both passes see exactly these events in the same order.
enum class Row702 {
    StartTrace,
    StopTrace,
    OpenLogicalLink,
    CloseLogicalLink,
    VariantDetectedInTrace,
    VariantDetectedInFinish,
    VariantSelectedInTrace,
    VariantSelectedInFinish,
    PrimitiveStart,  // head row of a DiagComPrimitive in StartDiagComPrimitive
    PrimitiveFinish, // ... in FinishDiagComPrimitive
    PrimitiveResult, // ... in Result
    CalledBy,
    DiagComPrimitive,
    Error,          // one row, two with the vendor row
    RequestMessage, // one row per 16-byte line, at least one
    ResponseMessage,
    RequestParameter,
    ResponseParameter,
};

// What a hook learns about an event besides the slots.
struct Event702 {
    Row702 kind;
    zdt::RowCount rows;          // rows the event makes
    int level;                   // ParameterLevel: the indent is two blanks per level above 1
    const BitFieldImpl* message; // message rows only
};

// Reads a decimal number the way the C library's atoi does, but clamped to int
// instead of undefined on overflow.
inline int decimalValue(const std::string& text) {
    const long value = std::strtol(text.c_str(), nullptr, 10);
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

// The 7.02 tables and routines common to both passes. `Hooks` supplies
//   static void onRow(Context&, const Event702&);
// called only when the consumer and its document are both present, after the slots
// the event's rows use were cleaned by PrintableOnly. The consumer of both passes
// keeps ParameterLevel and LastOpenedLevel.
template <typename Traits, typename Hooks> struct Xpvt702Routines {
    using E = XMLElements;
    using Parser = SaxParser<Traits>;
    using Context = typename Parser::Context;
    using Transition = typename Parser::Transition;
    using Header = XpvtHeaderRoutines<Parser>;

    static constexpr const char* MessageRowsMarker = "RequestResponse";

    static std::string& slot(Context& c, int number) { return c.slots[static_cast<std::size_t>(number)]; }

    static void clean(Context& c, std::initializer_list<int> slots) {
        for (int number : slots)
            PrintableOnly(slot(c, number));
    }

    static bool builds(const Context& c) { return c.consumer != nullptr && c.consumer->document != nullptr; }

    static int level(const Context& c) { return c.consumer != nullptr ? c.consumer->ParameterLevel : 0; }

    static void cleanSlotsOf(Context& c, Row702 kind) {
        switch (kind) {
        case Row702::StartTrace:
            clean(c, {Slot::PhysicalInterfaceLink, Slot::PhysicalVehicleLink, Slot::DateTime});
            break;
        case Row702::StopTrace:
            clean(c, {Slot::DateTime});
            break;
        case Row702::OpenLogicalLink:
        case Row702::CloseLogicalLink:
            clean(c, {Slot::LogicalLinkName, Slot::AccessKeyOfLocation, Slot::TimeStamp});
            break;
        case Row702::VariantDetectedInTrace:
        case Row702::VariantDetectedInFinish:
            clean(c, {Slot::VariantDetected});
            break;
        case Row702::VariantSelectedInTrace:
        case Row702::VariantSelectedInFinish:
            clean(c, {Slot::VariantSelected});
            break;
        case Row702::PrimitiveStart:
        case Row702::PrimitiveFinish:
        case Row702::PrimitiveResult:
            clean(c, {Slot::ObjectType, Slot::LogicalLinkName, Slot::AccessKeyOfLocation, Slot::PrimitiveId,
                      Slot::TimeStamp, Slot::ShortName, Slot::ParentChain});
            break;
        case Row702::CalledBy:
        case Row702::DiagComPrimitive:
            clean(c, {Slot::ParentChain, Slot::PrimitiveId, Slot::ShortName, Slot::ObjectType});
            break;
        case Row702::Error:
            clean(c, {Slot::ErrorCode, Slot::CodeDescription, Slot::VendorCode, Slot::VendorCodeDescription,
                      Slot::LogicalLinkName});
            break;
        case Row702::RequestMessage:
            clean(c, {Slot::RequestMessage, Slot::TimeStamp, Slot::RequestName});
            break;
        case Row702::ResponseMessage:
            clean(c, {Slot::ResponseMessage, Slot::AccessKeyOfLocation, Slot::LocationAddress, Slot::TimeStamp,
                      Slot::ShortName});
            break;
        case Row702::RequestParameter:
        case Row702::ResponseParameter:
            clean(c, {Slot::ParameterType, Slot::ShortName, Slot::ValueAsString, Slot::Unit, Slot::RangeType});
            break;
        }
    }

    static void row(Context& c, Row702 kind, zdt::RowCount rows = 1, const BitFieldImpl* message = nullptr) {
        cleanSlotsOf(c, kind);
        if (builds(c))
            Hooks::onRow(c, Event702{kind, rows, level(c), message});
    }

    // --- levels ---------------------------------------------------------------------

    static void openLevel(Context& c) {
        if (c.consumer == nullptr)
            return;
        ++c.consumer->ParameterLevel;
        c.consumer->LastOpenedLevel = c.consumer->ParameterLevel;
    }

    static void setChildFlag(Context& c, int index, int value) {
        if (index < 0)
            return;
        auto& flags = c.parameterHasChildren;
        if (static_cast<std::size_t>(index) >= flags.size())
            flags.resize(static_cast<std::size_t>(index) + 1, 0);
        flags[static_cast<std::size_t>(index)] = value;
    }

    // Result, Request and Response: the flag of the level they fall back to is cleared.
    static void closeLevel(Context& c) {
        if (c.consumer == nullptr)
            return;
        --c.consumer->ParameterLevel;
        setChildFlag(c, c.consumer->ParameterLevel, 0);
    }

    // A parameter clears the flag of the level it leaves, its own: a parent's flag set
    // by this child must survive until the parent's Value has seen it.
    static void closeParameterLevel(Context& c) {
        if (c.consumer == nullptr)
            return;
        setChildFlag(c, c.consumer->ParameterLevel, 0);
        --c.consumer->ParameterLevel;
    }

    // --- pending output ---------------------------------------------------------------

    static void flushErrors(Context& c) {
        clean(c, {Slot::ErrorCode, Slot::CodeDescription, Slot::VendorCode, Slot::VendorCodeDescription});
        const bool vendor = !slot(c, Slot::VendorCode).empty() || !slot(c, Slot::VendorCodeDescription).empty();
        if (slot(c, Slot::ErrorCode).empty() && slot(c, Slot::CodeDescription).empty() && !vendor)
            return;
        row(c, Row702::Error, vendor ? 2 : 1);
        for (int number : {Slot::ErrorCode, Slot::CodeDescription, Slot::VendorCode, Slot::VendorCodeDescription})
            slot(c, number).clear();
    }

    static void messageRows(Context& c, Row702 kind, int messageSlot) {
        static thread_local BitFieldImpl message;
        std::string& text = slot(c, messageSlot);
        PrintableOnly(text);
        message.init(text.c_str());
        const unsigned lines = message.lineCount();
        row(c, kind, lines == 0 ? 1 : static_cast<zdt::RowCount>(lines), &message);
    }

    static void messageRowsOnce(Context& c, Row702 kind, int messageSlot) {
        if (slot(c, Slot::MessageRowsDone).empty())
            messageRows(c, kind, messageSlot);
    }

    // --- routines -------------------------------------------------------------------

    // "All slots are emptied" at the start of these elements.
    static void startClearing(Context& c, const char**) { clearAllSlots(c); }

    static void startTraceEdge(Context& c, const char** a) {
        clearAllSlots(c);
        appendAttribute(a, "DateTime", slot(c, Slot::DateTime));
    }

    template <int SlotNumber> static void appendText(Context& c, const std::string& text) {
        slot(c, SlotNumber) += text;
    }

    template <Row702 Kind> static void endRow(Context& c) { row(c, Kind); }

    static void startLogicalLink(Context& c, const char** a) {
        appendAttribute(a, "ShortName", slot(c, Slot::LogicalLinkName));
    }

    static void startValue(Context& c, const char** a) {
        appendAttribute(a, "Type", slot(c, Slot::ValueType));
        appendAttribute(a, "Radix", slot(c, Slot::Radix));
    }

    static void startValueRangeInfo(Context& c, const char** a) {
        appendAttribute(a, "Type", slot(c, Slot::RangeType));
    }

    // An error's rows wait for the next flush: it has no end of its own.
    static void startError(Context& c, const char** a) {
        appendAttribute(a, "Severity", slot(c, Slot::Severity));
        appendAttribute(a, "Code", slot(c, Slot::ErrorCode));
    }

    static void startParent(Context& c, const char** a) {
        std::string& chain = slot(c, Slot::ParentChain);
        if (!chain.empty())
            chain += "-->";
        appendAttribute(a, "ShortName", chain);
    }

    // The primitive's rows come at its start, from what stands before it. Whether the
    // chain is there is asked of the slot as read: a chain of unprintable names still
    // gets its (empty) "Called by" row.
    template <Row702 Head> static void startPrimitive(Context& c, const char** a) {
        appendAttribute(a, "ShortName", slot(c, Slot::ShortName));
        appendAttribute(a, "ID", slot(c, Slot::PrimitiveId));
        appendAttribute(a, "ObjectType", slot(c, Slot::ObjectType));
        const bool calledBy = !slot(c, Slot::ParentChain).empty();
        row(c, Head);
        if (calledBy)
            row(c, Row702::CalledBy);
        row(c, Row702::DiagComPrimitive);
    }

    static void startResult(Context& c, const char**) {
        clearAllSlots(c);
        openLevel(c);
    }

    template <int NameSlot> static void startRequestOrResponse(Context& c, const char** a) {
        flushErrors(c);
        clearAllSlots(c);
        appendAttribute(a, "ShortName", slot(c, NameSlot));
        openLevel(c);
    }

    static void startParameter(Context& c, const char** a, Row702 messageKind, int messageSlot) {
        messageRowsOnce(c, messageKind, messageSlot);
        flushErrors(c);
        clearAllSlots(c);
        slot(c, Slot::MessageRowsDone) += MessageRowsMarker;
        openLevel(c);
        appendAttribute(a, "ShortName", slot(c, Slot::ShortName));
        appendAttribute(a, "Type", slot(c, Slot::ParameterType));
    }

    static void startRequestParameter(Context& c, const char** a) {
        startParameter(c, a, Row702::RequestMessage, Slot::RequestMessage);
    }

    // A response parameter tells its parent that it has children, so that a parent
    // whose Value comes after them makes no row.
    static void startResponseParameter(Context& c, const char** a) {
        startParameter(c, a, Row702::ResponseMessage, Slot::ResponseMessage);
        if (c.consumer == nullptr)
            return;
        const int parent = c.consumer->ParameterLevel - 1;
        auto& flags = c.parameterHasChildren;
        if (c.consumer->ParameterLevel >= 2 && static_cast<std::size_t>(parent) < flags.size() &&
            flags[static_cast<std::size_t>(parent)] == 0)
            flags[static_cast<std::size_t>(parent)] = 1;
    }

    static void endRequestParameter(Context& c) {
        slot(c, Slot::MessageRowsDone) += MessageRowsMarker;
        flushErrors(c);
        closeParameterLevel(c);
    }

    // The level falls before the flush here, unlike the request side, so a response
    // parameter's error shows one indent step less.
    static void endResponseParameter(Context& c) {
        slot(c, Slot::MessageRowsDone) += MessageRowsMarker;
        closeParameterLevel(c);
        flushErrors(c);
    }

    template <Row702 MessageKind, int MessageSlot> static void endRequestOrResponse(Context& c) {
        messageRowsOnce(c, MessageKind, MessageSlot);
        flushErrors(c);
        closeLevel(c);
    }

    static void endResult(Context& c) {
        flushErrors(c);
        closeLevel(c);
    }

    // The value is shown as the list shows it: radix 10 as it stands, radix 16 as
    // "$" and upper-case hex of its decimal reading, any other radix as nothing.
    static void convertValue(Context& c) {
        const std::string& radix = slot(c, Slot::Radix);
        if (radix.empty())
            return;
        std::string& value = slot(c, Slot::ValueAsString);
        const int r = decimalValue(radix);
        if (r == 10) {
            PrintableOnly(value);
        } else if (r == 16) {
            char text[16];
            std::snprintf(text, sizeof text, "$%X", static_cast<unsigned>(decimalValue(value)));
            value = text;
        } else {
            value.clear();
        }
    }

    template <Row702 Kind> static void endValue(Context& c) {
        slot(c, Slot::MessageRowsDone) += MessageRowsMarker;
        convertValue(c);
        if (c.consumer == nullptr)
            return;
        const int l = c.consumer->ParameterLevel;
        auto& flags = c.parameterHasChildren;
        if (l < 0 || static_cast<std::size_t>(l) >= flags.size() || flags[static_cast<std::size_t>(l)] != 0) {
            setChildFlag(c, l, 0);
            return;
        }
        row(c, Kind);
    }

    // --- tables ---------------------------------------------------------------------

    static void installTransitions(Parser& parser) {
        static const Transition trace[] = {{"StartTrace", E::StartTrace},
                                           {"StopTrace", E::StopTrace},
                                           {"OpenLogicalLink", E::OpenLogicalLink},
                                           {"CloseLogicalLink", E::CloseLogicalLink},
                                           {"StartDiagComPrimitive", E::StartDiagComPrimitive},
                                           {"FinishDiagComPrimitive", E::FinishDiagComPrimitive},
                                           {"Result", E::Result},
                                           {"VariantSelected", E::VariantSelectedInTrace},
                                           {"VariantDetected", E::VariantDetectedInTrace},
                                           {"", E::UnknownElement}};
        static const Transition startTrace[] = {{"PhysicalInterfaceLink", E::PhysicalInterfaceLink},
                                                {"PhysicalVehicleLink", E::PhysicalVehicleLink},
                                                {"", E::UnknownElement}};
        static const Transition linkEvent[] = {{"TimeStamp", E::TimeStamp},
                                               {"LogicalLink", E::LogicalLink},
                                               {"AccessKeyOfLocation", E::AccessKeyOfLocation},
                                               {"", E::UnknownElement}};
        static const Transition startPrimitive[] = {{"TimeStamp", E::TimeStamp},
                                                    {"LogicalLink", E::LogicalLink},
                                                    {"AccessKeyOfLocation", E::AccessKeyOfLocation},
                                                    {"ParentDiagComPrimitives", E::ParentDiagComPrimitives},
                                                    {"DiagComPrimitive", E::DiagComPrimitiveInStart},
                                                    {"", E::UnknownElement}};
        static const Transition finishPrimitive[] = {{"TimeStamp", E::TimeStamp},
                                                     {"LogicalLink", E::LogicalLink},
                                                     {"AccessKeyOfLocation", E::AccessKeyOfLocation},
                                                     {"ParentDiagComPrimitives", E::ParentDiagComPrimitives},
                                                     {"DiagComPrimitive", E::DiagComPrimitiveInFinish},
                                                     {"VariantDetected", E::VariantDetectedInFinish},
                                                     {"VariantSelected", E::VariantSelectedInFinish},
                                                     {"", E::UnknownElement}};
        static const Transition parents[] = {{"DiagComPrimitive", E::DiagComPrimitiveInParents},
                                             {"", E::UnknownElement}};
        static const Transition result[] = {{"LogicalLink", E::LogicalLink},
                                            {"ParentDiagComPrimitives", E::ParentDiagComPrimitives},
                                            {"DiagComPrimitive", E::DiagComPrimitiveInResult},
                                            {"Error", E::Error},
                                            {"Request", E::Request},
                                            {"Response", E::Response},
                                            {"", E::UnknownElement}};
        static const Transition request[] = {{"TimeStamp", E::TimeStamp},
                                             {"Error", E::Error},
                                             {"RequestMessage", E::RequestMessage},
                                             {"RequestParameter", E::RequestParameter},
                                             {"", E::UnknownElement}};
        static const Transition requestParameter[] = {
            {"Unit", E::Unit},   {"ValueRangeInfo", E::ValueRangeInfo},     {"Value", E::ValueInRequestParameter},
            {"Error", E::Error}, {"RequestParameter", E::RequestParameter}, {"", E::UnknownElement}};
        static const Transition response[] = {{"TimeStamp", E::TimeStamp},
                                              {"AccessKeyOfLocation", E::AccessKeyOfLocation},
                                              {"LocationAddress", E::LocationAddress},
                                              {"Error", E::Error},
                                              {"ResponseMessage", E::ResponseMessage},
                                              {"ResponseParameter", E::ResponseParameter},
                                              {"", E::UnknownElement}};
        static const Transition responseParameter[] = {
            {"Unit", E::Unit},   {"ValueRangeInfo", E::ValueRangeInfo},       {"Value", E::ValueInResponseParameter},
            {"Error", E::Error}, {"ResponseParameter", E::ResponseParameter}, {"", E::UnknownElement}};
        static const Transition value[] = {{"ValueAsString", E::ValueAsString}, {"", E::UnknownElement}};
        static const Transition rangeInfo[] = {{"Text", E::Text}, {"", E::UnknownElement}};
        static const Transition error[] = {{"CodeDescription", E::CodeDescription},
                                           {"VendorCode", E::VendorCode},
                                           {"VendorCodeDescription", E::VendorCodeDescription},
                                           {"", E::UnknownElement}};

        parser.setAllTransitions(Parser::defaultTransitions());
        // The header keeps the subtree it has in 7.01 files.
        Header::installTransitions(parser);
        parser.setTransitions(E::Trace, trace);
        parser.setTransitions(E::StartTrace, startTrace);
        parser.setTransitions(E::OpenLogicalLink, linkEvent);
        parser.setTransitions(E::CloseLogicalLink, linkEvent);
        parser.setTransitions(E::StartDiagComPrimitive, startPrimitive);
        parser.setTransitions(E::FinishDiagComPrimitive, finishPrimitive);
        parser.setTransitions(E::ParentDiagComPrimitives, parents);
        parser.setTransitions(E::Result, result);
        parser.setTransitions(E::Request, request);
        parser.setTransitions(E::RequestParameter, requestParameter);
        parser.setTransitions(E::Response, response);
        parser.setTransitions(E::ResponseParameter, responseParameter);
        parser.setTransitions(E::ValueInRequestParameter, value);
        parser.setTransitions(E::ValueInResponseParameter, value);
        parser.setTransitions(E::ValueRangeInfo, rangeInfo);
        parser.setTransitions(E::Error, error);
    }

    static void installStartRoutines(Parser& parser) {
        parser.setAllStartRoutines(nullptr);
        parser.setStartRoutine(E::StartTrace, &startTraceEdge);
        parser.setStartRoutine(E::StopTrace, &startTraceEdge);
        for (E element : {E::OpenLogicalLink, E::CloseLogicalLink, E::StartDiagComPrimitive, E::FinishDiagComPrimitive})
            parser.setStartRoutine(element, &startClearing);
        parser.setStartRoutine(E::LogicalLink, &startLogicalLink);
        parser.setStartRoutine(E::DiagComPrimitiveInParents, &startParent);
        parser.setStartRoutine(E::DiagComPrimitiveInStart, &startPrimitive<Row702::PrimitiveStart>);
        parser.setStartRoutine(E::DiagComPrimitiveInFinish, &startPrimitive<Row702::PrimitiveFinish>);
        parser.setStartRoutine(E::DiagComPrimitiveInResult, &startPrimitive<Row702::PrimitiveResult>);
        parser.setStartRoutine(E::Result, &startResult);
        parser.setStartRoutine(E::Request, &startRequestOrResponse<Slot::RequestName>);
        parser.setStartRoutine(E::Response, &startRequestOrResponse<Slot::ShortName>);
        parser.setStartRoutine(E::RequestParameter, &startRequestParameter);
        parser.setStartRoutine(E::ResponseParameter, &startResponseParameter);
        parser.setStartRoutine(E::ValueInRequestParameter, &startValue);
        parser.setStartRoutine(E::ValueInResponseParameter, &startValue);
        parser.setStartRoutine(E::ValueRangeInfo, &startValueRangeInfo);
        parser.setStartRoutine(E::Error, &startError);
    }

    static void installCharacterRoutines(Parser& parser) {
        parser.setAllCharacterRoutines(nullptr);
        parser.setCharacterRoutine(E::PhysicalInterfaceLink, &appendText<Slot::PhysicalInterfaceLink>);
        parser.setCharacterRoutine(E::PhysicalVehicleLink, &appendText<Slot::PhysicalVehicleLink>);
        parser.setCharacterRoutine(E::TimeStamp, &appendText<Slot::TimeStamp>);
        parser.setCharacterRoutine(E::AccessKeyOfLocation, &appendText<Slot::AccessKeyOfLocation>);
        parser.setCharacterRoutine(E::VariantDetectedInTrace, &appendText<Slot::VariantDetected>);
        parser.setCharacterRoutine(E::VariantDetectedInFinish, &appendText<Slot::VariantDetected>);
        parser.setCharacterRoutine(E::VariantSelectedInTrace, &appendText<Slot::VariantSelected>);
        parser.setCharacterRoutine(E::VariantSelectedInFinish, &appendText<Slot::VariantSelected>);
        parser.setCharacterRoutine(E::LocationAddress, &appendText<Slot::LocationAddress>);
        parser.setCharacterRoutine(E::Unit, &appendText<Slot::Unit>);
        parser.setCharacterRoutine(E::RequestMessage, &appendText<Slot::RequestMessage>);
        parser.setCharacterRoutine(E::ResponseMessage, &appendText<Slot::ResponseMessage>);
        parser.setCharacterRoutine(E::ValueAsString, &appendText<Slot::ValueAsString>);
        parser.setCharacterRoutine(E::Text, &appendText<Slot::Text>);
        parser.setCharacterRoutine(E::CodeDescription, &appendText<Slot::CodeDescription>);
        parser.setCharacterRoutine(E::VendorCode, &appendText<Slot::VendorCode>);
        parser.setCharacterRoutine(E::VendorCodeDescription, &appendText<Slot::VendorCodeDescription>);
    }

    static void installEndRoutines(Parser& parser) {
        parser.setAllEndRoutines(nullptr);
        parser.setEndRoutine(E::StartTrace, &endRow<Row702::StartTrace>);
        parser.setEndRoutine(E::StopTrace, &endRow<Row702::StopTrace>);
        parser.setEndRoutine(E::OpenLogicalLink, &endRow<Row702::OpenLogicalLink>);
        parser.setEndRoutine(E::CloseLogicalLink, &endRow<Row702::CloseLogicalLink>);
        parser.setEndRoutine(E::VariantDetectedInTrace, &endRow<Row702::VariantDetectedInTrace>);
        parser.setEndRoutine(E::VariantDetectedInFinish, &endRow<Row702::VariantDetectedInFinish>);
        parser.setEndRoutine(E::VariantSelectedInTrace, &endRow<Row702::VariantSelectedInTrace>);
        parser.setEndRoutine(E::VariantSelectedInFinish, &endRow<Row702::VariantSelectedInFinish>);
        parser.setEndRoutine(E::Result, &endResult);
        parser.setEndRoutine(E::Request, &endRequestOrResponse<Row702::RequestMessage, Slot::RequestMessage>);
        parser.setEndRoutine(E::Response, &endRequestOrResponse<Row702::ResponseMessage, Slot::ResponseMessage>);
        parser.setEndRoutine(E::RequestParameter, &endRequestParameter);
        parser.setEndRoutine(E::ResponseParameter, &endResponseParameter);
        parser.setEndRoutine(E::ValueInRequestParameter, &endValue<Row702::RequestParameter>);
        parser.setEndRoutine(E::ValueInResponseParameter, &endValue<Row702::ResponseParameter>);
    }

    // Tables and routines of the trace; the header's routines are the row pass's own.
    static void install(Parser& parser) {
        installTransitions(parser);
        installStartRoutines(parser);
        installCharacterRoutines(parser);
        installEndRoutines(parser);
    }

    // The header as the 7.01 tables read it: a second Description after the switch
    // still fills the session facts.
    static void installDescription(Parser& parser, typename Parser::EndRoutine descriptionEnd) {
        Header::installRoutines(parser, descriptionEnd);
    }
};

} // namespace ZDTAnalyzer::Xpvt
