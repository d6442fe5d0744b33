#include "xpvt/ConsumerUserInterface.h"

#include "xpvt/Xpvt701Routines.h"
#include "xpvt/XpvtDoc.h"
#include "xpvt/XpvtRow.h"

#include <string>
#include <string_view>

namespace ZDTAnalyzer::Xpvt {

namespace {

using Traits = SaxParserTraits<ConsumerUserInterface>;

// The row pass of 7.01: each event becomes its row(s) in the document.
struct RowHooks701 {
    using ParserTraits = Traits;
    using Context = UserInterfaceContext;
    static constexpr bool NestsResponseParameters = true;

    static void onRow(Context& context, Row701 event);
    static void onDescriptionEnd(Context& context) { endDescription(context); }
};

using Routines = Xpvt701Routines<RowHooks701>;

const std::string& text(const UserInterfaceContext& c, int slot) {
    return c.slots[static_cast<std::size_t>(slot)];
}

// Scratch texts for fields made of several parts, reused so a row costs no allocation.
std::string& scratch() {
    static thread_local std::string buffer;
    buffer.clear();
    return buffer;
}

// "@<Time> <Date>", the time stamp of trace, link and primitive events.
std::string_view stamp(const UserInterfaceContext& c) {
    std::string& s = scratch();
    s += '@';
    s += text(c, Slot::Time);
    s += ' ';
    s += text(c, Slot::Date);
    return s;
}

void append(UserInterfaceContext& c, RowKind kind, std::initializer_list<std::string_view> fields) {
    makeRow(c.consumer->row, kind, fields);
    c.consumer->document->appendXpvtRow(c.consumer->row);
}

void eventRow(UserInterfaceContext& c, RowKind kind, std::string_view event, std::string_view link,
              std::string_view description, std::string_view value) {
    append(c, kind, {event, link, "", "", description, value, stamp(c)});
}

void pduRows(UserInterfaceContext& c, std::string_view event, std::string_view canId, std::string_view timeStamp,
             std::string_view description) {
    Routines::forEachPduPiece(text(c, Slot::Pdu), [&](const std::string& piece) {
        append(c, RowKind::Plain, {event, "", canId, timeStamp, description, piece, ""});
    });
}

void stateRow(UserInterfaceContext& c) {
    // Only this exact spelling is the failure state; any other text shows as it stands.
    const bool notAcknowledged = text(c, Slot::State) == "notacknowledged";
    append(c, notAcknowledged ? RowKind::Failure : RowKind::Plain,
           {"  Response [STATE]", "", "", "", "Response state",
            notAcknowledged ? std::string_view("not acknowledged") : std::string_view(text(c, Slot::State)), ""});
}

void ecuRow(UserInterfaceContext& c) {
    std::string& ecu = scratch();
    ecu += '[';
    ecu += text(c, Slot::Ecu);
    ecu += ']';
    append(c, RowKind::Plain, {"  Response [ECU]", "", "", "", ecu, text(c, Slot::ShortName), ""});
}

void responseParameterRow(UserInterfaceContext& c) {
    // Two blanks for each level above the first.
    std::string& name = scratch();
    const int level = c.consumer->ParameterLevel;
    if (level > 1)
        name.append(static_cast<std::size_t>(2 * (level - 1)), ' ');
    name += text(c, Slot::ShortName);
    append(c, RowKind::ResponseParameter,
           {"    Response parameter", "", "", "", name, text(c, Slot::Value), text(c, Slot::Text)});
}

void errorRows(UserInterfaceContext& c) {
    append(c, RowKind::Failure, {"Error", "", "", "", text(c, Slot::CodeDescription), text(c, Slot::ShortName), ""});
    std::string& severity = scratch();
    severity += text(c, Slot::Severity);
    severity += "[ ";
    severity += text(c, Slot::SeverityInfo);
    severity += ']';
    append(c, RowKind::Failure, {"Error", "", "", "", "Severity info", severity, ""});
}

void RowHooks701::onRow(Context& c, Row701 event) {
    if (c.consumer == nullptr || c.consumer->document == nullptr)
        return;
    const std::string& link = text(c, Slot::LogicalLinkName);
    switch (event) {
    case Row701::StartTrace:
        eventRow(c, RowKind::Plain, "Start trace", "", text(c, Slot::RequestName), "");
        break;
    case Row701::StopTrace:
        eventRow(c, RowKind::Plain, "Stop trace", "", "", "");
        break;
    case Row701::OpenComPrimitive:
        eventRow(c, RowKind::Primitive, "OpenComPrimitive", link, text(c, Slot::PrimitiveType), "open ComPrimitive");
        break;
    case Row701::CloseComPrimitive:
        eventRow(c, RowKind::Primitive, "CloseComPrimitive", link, "", "close ComPrimitive");
        break;
    case Row701::OpenLogicalLink:
        eventRow(c, RowKind::Plain, "OpenLogicalLink", link, "", "open logical link");
        break;
    case Row701::CloseLogicalLink:
        eventRow(c, RowKind::Plain, "CloseLogicalLink", link, "", "close logical link");
        break;
    case Row701::Result:
        append(c, RowKind::Plain, {"Result", link, "", "", "[Tester]", "", ""});
        break;
    case Row701::RequestName:
        append(c, RowKind::Plain, {"  Request[ShortName]", "", "", "", text(c, Slot::RequestName), "", ""});
        break;
    case Row701::RequestPdu:
        pduRows(c, "  Request PDU", "", "", "RequestPDU");
        break;
    case Row701::RequestParameter:
        append(
            c, RowKind::Plain,
            {"  Request parameter", "", "", "", text(c, Slot::ShortName), text(c, Slot::Value), text(c, Slot::Text)});
        break;
    case Row701::Ecu:
        ecuRow(c);
        break;
    case Row701::State:
        stateRow(c);
        break;
    case Row701::ResponsePdu:
        pduRows(c, "  Response[PDU]", text(c, Slot::CanId), text(c, Slot::TimeStamp), "ResponsePDU");
        break;
    case Row701::ResponseParameter:
        responseParameterRow(c);
        break;
    case Row701::Error:
        errorRows(c);
        break;
    }
}

} // namespace

void SaxParserTraits<ConsumerUserInterface>::install701(Parser& parser) {
    Routines::install(parser);
}

} // namespace ZDTAnalyzer::Xpvt
