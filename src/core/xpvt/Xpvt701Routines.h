#pragma once

#include "common/RowTypes.h"
#include "xmldoc/PrintableOnly.h"
#include "xpvt/PduChunker.h"
#include "xpvt/XpvtElements.h"
#include "xpvt/XpvtHeaderRoutines.h"

#include <initializer_list>
#include <string>

namespace ZDTAnalyzer::Xpvt {

// The moments of a 7.01 trace at which the row pass makes rows and the search pass
// counts them. Both passes see exactly these events in the same order.
enum class Row701 {
    StartTrace,
    StopTrace,
    OpenComPrimitive,
    CloseComPrimitive,
    OpenLogicalLink,
    CloseLogicalLink,
    Result,           // LogicalLink in ZdtResult
    RequestName,      // ShortName in ZdtRequest
    RequestPdu,       // one row per piece
    RequestParameter, // ZdtValue in ZdtRequestParameter
    Ecu,
    State,
    ResponsePdu, // one row per piece
    ResponseParameter,
    Error, // two rows
};

// The 7.01 tables and routines common to both passes. `Hooks` supplies:
//   using ParserTraits = SaxParserTraits<Consumer>;  // the pass
//   static void onRow(Context&, Row701);   // the row(s) of the event, or their count
//   static constexpr bool NestsResponseParameters;
//     true: a parent parameter's row comes when its first child opens (the row pass,
//     which keeps the levels in its consumer); false: one event at each parameter's end.
//   static void onDescriptionEnd(Context&); // the header is read (may be a no-op)
// The slots an event's row uses are cleaned by PrintableOnly before the hook runs.
template <typename Hooks> struct Xpvt701Routines {
    using E = XMLElements;
    using Parser = SaxParser<typename Hooks::ParserTraits>;
    using Context = typename Parser::Context;
    using Transition = typename Parser::Transition;
    using Header = XpvtHeaderRoutines<Parser>;

    static constexpr const char* NoPdu = "NO PDU";

    static std::string& slot(Context& c, int number) { return c.slots[static_cast<std::size_t>(number)]; }

    static void clean(Context& c, std::initializer_list<int> slots) {
        for (int number : slots)
            PrintableOnly(slot(c, number));
    }

    static void cleanSlotsOf(Context& c, Row701 event) {
        switch (event) {
        case Row701::StartTrace:
            clean(c, {Slot::RequestName, Slot::Time, Slot::Date});
            break;
        case Row701::StopTrace:
            clean(c, {Slot::Time, Slot::Date});
            break;
        case Row701::OpenComPrimitive:
            clean(c, {Slot::LogicalLinkName, Slot::PrimitiveType, Slot::Time, Slot::Date});
            break;
        case Row701::CloseComPrimitive:
        case Row701::OpenLogicalLink:
        case Row701::CloseLogicalLink:
            clean(c, {Slot::LogicalLinkName, Slot::Time, Slot::Date});
            break;
        case Row701::Result:
            clean(c, {Slot::LogicalLinkName});
            break;
        case Row701::RequestName:
            clean(c, {Slot::RequestName});
            break;
        case Row701::RequestPdu:
            clean(c, {Slot::Pdu});
            break;
        case Row701::ResponsePdu:
            clean(c, {Slot::Pdu, Slot::CanId, Slot::TimeStamp});
            break;
        case Row701::RequestParameter:
        case Row701::ResponseParameter:
            clean(c, {Slot::ShortName, Slot::Value, Slot::Text});
            break;
        case Row701::Ecu:
            clean(c, {Slot::Ecu, Slot::ShortName});
            break;
        case Row701::State:
            clean(c, {Slot::State});
            break;
        case Row701::Error:
            clean(c, {Slot::CodeDescription, Slot::ShortName, Slot::Severity, Slot::SeverityInfo});
            break;
        }
    }

    static void row(Context& c, Row701 event) {
        cleanSlotsOf(c, event);
        Hooks::onRow(c, event);
    }

    // Calls `onPiece(piece)` for each row of a PDU text; both passes cut the same way.
    // The slot keeps its text: the cut runs on a copy.
    template <typename OnPiece> static void forEachPduPiece(const std::string& pdu, OnPiece&& onPiece) {
        static thread_local std::string remaining;
        static thread_local std::string piece;
        remaining = pdu;
        while (PduChunker(remaining, piece))
            onPiece(static_cast<const std::string&>(piece));
    }

    static zdt::RowCount pduPieceCount(const std::string& pdu) {
        zdt::RowCount count = 0;
        forEachPduPiece(pdu, [&count](const std::string&) { ++count; });
        return count;
    }

    // --- routines -------------------------------------------------------------------

    // "All slots are emptied" at the start of these elements.
    static void startClearing(Context& c, const char**) { clearAllSlots(c); }

    template <int SlotNumber> static void appendText(Context& c, const std::string& text) {
        Header::template appendText<SlotNumber>(c, text);
    }

    template <Row701 Event> static void endRow(Context& c) { row(c, Event); }

    // A PDU of "NO PDU" is no PDU at all: no row, no count.
    template <Row701 Event> static void endPdu(Context& c) {
        cleanSlotsOf(c, Event);
        if (slot(c, Slot::Pdu) == NoPdu)
            return;
        Hooks::onRow(c, Event);
    }

    // A parameter's row must come before its children's: it is made when the first
    // child opens, or at its own end when it has none. The deepest level opened so far
    // keeps a parent whose children have closed from making a second row.
    static void startResponseParameter(Context& c, const char**) {
        if constexpr (Hooks::NestsResponseParameters) {
            if (c.consumer == nullptr)
                return;
            auto& consumer = *c.consumer;
            if (consumer.ParameterLevel > 0 && consumer.ParameterLevel == consumer.LastOpenedLevel) {
                row(c, Row701::ResponseParameter);
                clearAllSlots(c);
            }
            ++consumer.ParameterLevel;
            consumer.LastOpenedLevel = consumer.ParameterLevel;
        }
    }

    static void endResponseParameter(Context& c) {
        if constexpr (Hooks::NestsResponseParameters) {
            if (c.consumer == nullptr)
                return;
            auto& consumer = *c.consumer;
            if (consumer.ParameterLevel == consumer.LastOpenedLevel) {
                row(c, Row701::ResponseParameter);
                clearAllSlots(c);
            }
            --consumer.ParameterLevel;
        } else {
            // No levels here: one event per parameter, in closing order.
            row(c, Row701::ResponseParameter);
            clearAllSlots(c);
        }
    }

    static void endDescription(Context& c) { Hooks::onDescriptionEnd(c); }

    // --- tables ---------------------------------------------------------------------

    static void installTransitions(Parser& parser) {
        static const Transition logicalLink[] = {{"ShortName", E::ShortNameInLogicalLink},
                                                 {"DatabaseAccessKey", E::DatabaseAccessKey},
                                                 {"", E::UnknownElement}};
        static const Transition trace[] = {{"ZdtResult", E::ZdtResult},
                                           {"OpenComPrimitive", E::OpenComPrimitive},
                                           {"CloseComPrimitive", E::CloseComPrimitive},
                                           {"OpenLogicalLink", E::OpenLogicalLink},
                                           {"CloseLogicalLink", E::CloseLogicalLink},
                                           {"StartTrace", E::StartTrace},
                                           {"StopTrace", E::StopTrace},
                                           {"", E::UnknownElement}};
        static const Transition traceEdge[] = {{"Date", E::Date}, {"Time", E::Time}, {"", E::UnknownElement}};
        static const Transition linkEvent[] = {{"LogicalLink", E::LogicalLink},
                                               {"PhysicalInterfaceLink", E::PhysicalInterfaceLink},
                                               {"Date", E::Date},
                                               {"Time", E::Time},
                                               {"", E::UnknownElement}};
        static const Transition primitive[] = {{"ShortName", E::ShortName},
                                               {"ID", E::ID},
                                               {"Type", E::TypeInPrimitive},
                                               {"LogicalLink", E::LogicalLink},
                                               {"PhysicalInterfaceLink", E::PhysicalInterfaceLink},
                                               {"Date", E::Date},
                                               {"Time", E::Time},
                                               {"", E::UnknownElement}};
        static const Transition result[] = {{"LogicalLink", E::LogicalLinkInZdtResult},
                                            {"ZdtRequest", E::ZdtRequest},
                                            {"ZdtResponse", E::ZdtResponse},
                                            {"", E::UnknownElement}};
        static const Transition request[] = {{"ShortName", E::ShortNameInZdtRequest},
                                             {"PDU", E::PduInZdtRequest},
                                             {"ZdtRequestParameter", E::ZdtRequestParameter},
                                             {"", E::UnknownElement}};
        static const Transition requestParameter[] = {{"ShortName", E::ShortName},
                                                      {"Type", E::Type},
                                                      {"Unit", E::Unit},
                                                      {"RangeInfo", E::RangeInfo},
                                                      {"ZdtValue", E::ZdtValueInRequestParameter},
                                                      {"ZdtError", E::ZdtError},
                                                      {"", E::UnknownElement}};
        static const Transition response[] = {{"ShortName", E::ShortName},
                                              {"ECU", E::ECU},
                                              {"State", E::State},
                                              {"StateInfo", E::StateInfo},
                                              {"CANID", E::CANID},
                                              {"TimeStamp", E::TimeStamp},
                                              {"PDU", E::PduInZdtResponse},
                                              {"DatabaseAccessKey", E::DatabaseAccessKey},
                                              {"ZdtResponseParameter", E::ZdtResponseParameter},
                                              {"", E::UnknownElement}};
        static const Transition responseParameter[] = {{"ShortName", E::ShortName},
                                                       {"Type", E::Type},
                                                       {"Unit", E::Unit},
                                                       {"RangeInfo", E::RangeInfo},
                                                       {"ZdtValue", E::ZdtValueInResponseParameter},
                                                       {"ZdtError", E::ZdtError},
                                                       {"ZdtResponseParameter", E::ZdtResponseParameter},
                                                       {"", E::UnknownElement}};
        static const Transition value[] = {
            {"Type", E::Type}, {"Value", E::ValueInZdtValue}, {"Radix", E::Radix}, {"", E::UnknownElement}};
        static const Transition rangeInfo[] = {{"Type", E::Type}, {"Text", E::Text}, {"", E::UnknownElement}};
        static const Transition error[] = {{"ShortName", E::ShortName},
                                           {"CodeDescription", E::CodeDescription},
                                           {"Severity", E::Severity},
                                           {"SeverityInfo", E::SeverityInfo},
                                           {"", E::UnknownElement}};

        parser.setAllTransitions(Parser::defaultTransitions());
        Header::installTransitions(parser);
        parser.setTransitions(E::LogicalLink, logicalLink);
        parser.setTransitions(E::LogicalLinkInZdtResult, logicalLink);
        parser.setTransitions(E::Trace, trace);
        parser.setTransitions(E::StartTrace, traceEdge);
        parser.setTransitions(E::StopTrace, traceEdge);
        parser.setTransitions(E::OpenLogicalLink, linkEvent);
        parser.setTransitions(E::CloseLogicalLink, linkEvent);
        parser.setTransitions(E::OpenComPrimitive, primitive);
        parser.setTransitions(E::CloseComPrimitive, primitive);
        parser.setTransitions(E::ZdtResult, result);
        parser.setTransitions(E::ZdtRequest, request);
        parser.setTransitions(E::ZdtRequestParameter, requestParameter);
        parser.setTransitions(E::ZdtResponse, response);
        parser.setTransitions(E::ZdtResponseParameter, responseParameter);
        parser.setTransitions(E::ZdtValueInRequestParameter, value);
        parser.setTransitions(E::ZdtValueInResponseParameter, value);
        parser.setTransitions(E::RangeInfo, rangeInfo);
        parser.setTransitions(E::ZdtError, error);
    }

    static void installStartRoutines(Parser& parser) {
        parser.setAllStartRoutines(nullptr);
        for (E element :
             {E::StartTrace, E::StopTrace, E::OpenComPrimitive, E::CloseComPrimitive, E::OpenLogicalLink,
              E::CloseLogicalLink, E::ZdtResult, E::ZdtRequestParameter, E::ZdtResponse, E::ZdtError, E::ECU})
            parser.setStartRoutine(element, &startClearing);
        parser.setStartRoutine(E::ZdtResponseParameter, &startResponseParameter);
    }

    static void installCharacterRoutines(Parser& parser) {
        parser.setAllCharacterRoutines(nullptr);
        parser.setCharacterRoutine(E::Time, &appendText<Slot::Time>);
        parser.setCharacterRoutine(E::Date, &appendText<Slot::Date>);
        parser.setCharacterRoutine(E::ShortNameInLogicalLink, &appendText<Slot::LogicalLinkName>);
        parser.setCharacterRoutine(E::TypeInPrimitive, &appendText<Slot::PrimitiveType>);
        parser.setCharacterRoutine(E::PhysicalInterfaceLink, &appendText<Slot::PhysicalInterfaceLink>);
        parser.setCharacterRoutine(E::ShortNameInZdtRequest, &appendText<Slot::RequestName>);
        parser.setCharacterRoutine(E::PduInZdtRequest, &appendText<Slot::Pdu>);
        parser.setCharacterRoutine(E::PduInZdtResponse, &appendText<Slot::Pdu>);
        parser.setCharacterRoutine(E::ShortName, &appendText<Slot::ShortName>);
        parser.setCharacterRoutine(E::Text, &appendText<Slot::Text>);
        parser.setCharacterRoutine(E::ValueInZdtValue, &appendText<Slot::Value>);
        parser.setCharacterRoutine(E::CodeDescription, &appendText<Slot::CodeDescription>);
        parser.setCharacterRoutine(E::Severity, &appendText<Slot::Severity>);
        parser.setCharacterRoutine(E::SeverityInfo, &appendText<Slot::SeverityInfo>);
        parser.setCharacterRoutine(E::ECU, &appendText<Slot::Ecu>);
        parser.setCharacterRoutine(E::State, &appendText<Slot::State>);
        parser.setCharacterRoutine(E::DatabaseAccessKey, &appendText<Slot::DatabaseAccessKey>);
        parser.setCharacterRoutine(E::CANID, &appendText<Slot::CanId>);
        parser.setCharacterRoutine(E::TimeStamp, &appendText<Slot::TimeStamp>);
    }

    static void installEndRoutines(Parser& parser) {
        parser.setAllEndRoutines(nullptr);
        parser.setEndRoutine(E::StartTrace, &endRow<Row701::StartTrace>);
        parser.setEndRoutine(E::StopTrace, &endRow<Row701::StopTrace>);
        parser.setEndRoutine(E::OpenComPrimitive, &endRow<Row701::OpenComPrimitive>);
        parser.setEndRoutine(E::CloseComPrimitive, &endRow<Row701::CloseComPrimitive>);
        parser.setEndRoutine(E::OpenLogicalLink, &endRow<Row701::OpenLogicalLink>);
        parser.setEndRoutine(E::CloseLogicalLink, &endRow<Row701::CloseLogicalLink>);
        parser.setEndRoutine(E::LogicalLinkInZdtResult, &endRow<Row701::Result>);
        parser.setEndRoutine(E::ShortNameInZdtRequest, &endRow<Row701::RequestName>);
        parser.setEndRoutine(E::PduInZdtRequest, &endPdu<Row701::RequestPdu>);
        parser.setEndRoutine(E::ZdtValueInRequestParameter, &endRow<Row701::RequestParameter>);
        parser.setEndRoutine(E::ECU, &endRow<Row701::Ecu>);
        parser.setEndRoutine(E::State, &endRow<Row701::State>);
        parser.setEndRoutine(E::PduInZdtResponse, &endPdu<Row701::ResponsePdu>);
        parser.setEndRoutine(E::ZdtResponseParameter, &endResponseParameter);
        parser.setEndRoutine(E::ZdtError, &endRow<Row701::Error>);
    }

    static void install(Parser& parser) {
        installTransitions(parser);
        installStartRoutines(parser);
        installCharacterRoutines(parser);
        installEndRoutines(parser);
        Header::installRoutines(parser, &endDescription);
    }
};

} // namespace ZDTAnalyzer::Xpvt
