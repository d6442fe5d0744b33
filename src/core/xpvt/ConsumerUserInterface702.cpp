#include "xpvt/ConsumerUserInterface.h"

#include "xpvt/Xpvt702Routines.h"
#include "xpvt/XpvtDoc.h"
#include "xpvt/XpvtRow.h"

#include <string>
#include <string_view>

namespace ZDTAnalyzer::Xpvt {

namespace {

using Traits = SaxParserTraits<ConsumerUserInterface>;

// The row pass of 7.02: each event becomes its row(s) in the document.
struct RowHooks702 {
    static void onRow(UserInterfaceContext& context, const Event702& event);
};

using Routines = Xpvt702Routines<Traits, RowHooks702>;

const std::string& text(const UserInterfaceContext& c, int slot) {
    return c.slots[static_cast<std::size_t>(slot)];
}

// Scratch texts for fields made of several parts, reused so a row costs no allocation.
// A row needs at most two of them at once.
std::string& scratch(int which) {
    static thread_local std::string buffers[2];
    std::string& buffer = buffers[which];
    buffer.clear();
    return buffer;
}

// Two blanks for each level above 1, then the label.
std::string_view indented(int which, int level, std::string_view label) {
    std::string& s = scratch(which);
    if (level > 1)
        s.append(static_cast<std::size_t>(level - 1) * 2, ' ');
    s += label;
    return s;
}

std::string_view bracketed(int which, std::string_view head, const std::string& inner) {
    std::string& s = scratch(which);
    s += head;
    s += inner;
    s += ']';
    return s;
}

// Fields: Event, LogicalLink, Location, ID, Time, Description, Value, Unit, RangeInfo.
void append(UserInterfaceContext& c, RowKind kind, std::initializer_list<std::string_view> fields) {
    makeRow(c.consumer->row, kind, fields);
    c.consumer->document->appendXpvtRow(c.consumer->row);
}

void simpleRow(UserInterfaceContext& c, std::string_view event, std::string_view link, std::string_view location,
               std::string_view time) {
    append(c, RowKind::Plain, {event, link, location, "", time, "", "", "", ""});
}

void startTraceRow(UserInterfaceContext& c) {
    std::string& links = scratch(0);
    links += text(c, Slot::PhysicalInterfaceLink);
    links += ' ';
    links += text(c, Slot::PhysicalVehicleLink);
    simpleRow(c, "Start Trace", links, "", text(c, Slot::DateTime));
}

void primitiveHeadRow(UserInterfaceContext& c, RowKind kind, std::string_view head, bool withWhereAndWhen) {
    const std::string_view event = bracketed(0, head, text(c, Slot::ObjectType));
    if (withWhereAndWhen)
        append(c, kind,
               {event, text(c, Slot::LogicalLinkName), text(c, Slot::AccessKeyOfLocation), text(c, Slot::PrimitiveId),
                text(c, Slot::TimeStamp), "", text(c, Slot::ShortName), "", ""});
    else
        append(c, kind, {event, text(c, Slot::LogicalLinkName), "", text(c, Slot::PrimitiveId), "", "", "", "", ""});
}

// The chain loses its first three characters here, meant for a leading "-->" that it
// never has; the "Called by" row shows it whole.
void diagComPrimitiveRow(UserInterfaceContext& c) {
    std::string& description = scratch(0);
    description += text(c, Slot::ShortName);
    description += ':';
    description += text(c, Slot::ObjectType);
    std::string_view chain = text(c, Slot::ParentChain);
    if (chain.size() >= 3)
        chain.remove_prefix(3);
    append(c, RowKind::Plain,
           {"  DiagComPrimitive", "", "", text(c, Slot::PrimitiveId), "", description, chain, "", ""});
}

void errorRows(UserInterfaceContext& c, const Event702& event) {
    append(c, RowKind::Failure,
           {indented(0, event.level, "Error"), "", "", text(c, Slot::ErrorCode), "", text(c, Slot::CodeDescription), "",
            "", ""});
    if (event.rows > 1)
        append(c, RowKind::Failure,
               {indented(0, event.level, "Error (Vendor)"), text(c, Slot::LogicalLinkName), "",
                text(c, Slot::VendorCode), "", text(c, Slot::VendorCodeDescription), "", "", ""});
}

void messageRows(UserInterfaceContext& c, const Event702& event) {
    const bool request = event.kind == Row702::RequestMessage;
    std::string& line = scratch(1);
    event.message->formatLine(line, 0);
    if (request)
        append(c, RowKind::Plain,
               {indented(0, event.level, "Request"), "", "", "", text(c, Slot::TimeStamp), text(c, Slot::RequestName),
                line, "", ""});
    else
        append(c, RowKind::ResponseParameter,
               {indented(0, event.level, "Response"), "", text(c, Slot::AccessKeyOfLocation),
                text(c, Slot::LocationAddress), text(c, Slot::TimeStamp), text(c, Slot::ShortName), line, "", ""});
    const std::string_view more = indented(0, event.level, request ? "Request[Message]" : "");
    for (int i = 1; i < event.rows; ++i) {
        event.message->formatLine(line, static_cast<unsigned>(i) * BitFieldImpl::BytesPerLine);
        append(c, request ? RowKind::Plain : RowKind::ResponseParameter, {more, "", "", "", "", "", line, "", ""});
    }
}

void parameterRow(UserInterfaceContext& c, const Event702& event) {
    std::string& label = scratch(0);
    if (event.level > 1)
        label.append(static_cast<std::size_t>(event.level - 1) * 2, ' ');
    label += "Parameter [";
    label += text(c, Slot::ParameterType);
    label += ']';
    append(c, event.kind == Row702::RequestParameter ? RowKind::Plain : RowKind::ResponseParameter,
           {label, "", "", "", "", text(c, Slot::ShortName), text(c, Slot::ValueAsString), text(c, Slot::Unit),
            text(c, Slot::RangeType)});
}

void RowHooks702::onRow(UserInterfaceContext& c, const Event702& event) {
    switch (event.kind) {
    case Row702::StartTrace:
        startTraceRow(c);
        break;
    case Row702::StopTrace:
        simpleRow(c, "Stop Trace", "", "", text(c, Slot::DateTime));
        break;
    case Row702::OpenLogicalLink:
    case Row702::CloseLogicalLink:
        simpleRow(c, event.kind == Row702::OpenLogicalLink ? "OpenLogicalLink" : "CloseLogicalLink",
                  text(c, Slot::LogicalLinkName), text(c, Slot::AccessKeyOfLocation), text(c, Slot::TimeStamp));
        break;
    case Row702::VariantDetectedInTrace:
        simpleRow(c, "VariantDetected", "", text(c, Slot::VariantDetected), "");
        break;
    case Row702::VariantDetectedInFinish:
        simpleRow(c, "  VariantDetected", "", text(c, Slot::VariantDetected), "");
        break;
    case Row702::VariantSelectedInTrace:
        simpleRow(c, "VariantSelected", "", text(c, Slot::VariantSelected), "");
        break;
    case Row702::VariantSelectedInFinish:
        simpleRow(c, "  VariantSelected", "", text(c, Slot::VariantSelected), "");
        break;
    case Row702::PrimitiveStart:
        primitiveHeadRow(c, RowKind::Primitive, "Start [", true);
        break;
    case Row702::PrimitiveFinish:
        primitiveHeadRow(c, RowKind::Primitive, "Stop [", true);
        break;
    case Row702::PrimitiveResult:
        primitiveHeadRow(c, RowKind::Plain, "Result [", false);
        break;
    case Row702::CalledBy:
        append(c, RowKind::Plain, {"   Called by", "", "", "", "", "", text(c, Slot::ParentChain), "", ""});
        break;
    case Row702::DiagComPrimitive:
        diagComPrimitiveRow(c);
        break;
    case Row702::Error:
        errorRows(c, event);
        break;
    case Row702::RequestMessage:
    case Row702::ResponseMessage:
        messageRows(c, event);
        break;
    case Row702::RequestParameter:
    case Row702::ResponseParameter:
        parameterRow(c, event);
        break;
    }
}

} // namespace

void SaxParserTraits<ConsumerUserInterface>::install702(Parser& parser) {
    Routines::install(parser);
    Routines::installDescription(parser, &endDescription);
}

} // namespace ZDTAnalyzer::Xpvt
