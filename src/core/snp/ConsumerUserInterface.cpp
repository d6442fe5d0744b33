#include "snp/ConsumerUserInterface.h"

#include "snp/SnpDoc.h"

namespace ZDTAnalyzer::Snp {

namespace {

constexpr char Separator = '\x01';

struct RowLayout {
    const char* flags;
    const char* event;
};

RowLayout layoutOf(RowEvent event) {
    switch (event) {
    case RowEvent::SnapShotStart:
        return {"000", "Start SnapShot"};
    case RowEvent::SnapShotStop:
        return {"000", "Stop SnapShot"};
    case RowEvent::Project:
        return {"001", "Zdt Project"};
    case RowEvent::Vit:
        return {"001", "VIT"};
    case RowEvent::LinkStart:
        return {"000", "Start LogicalLink"};
    case RowEvent::LinkStop:
        return {"000", "Stop LogicalLink"};
    case RowEvent::Service:
        return {"000", "Service"};
    case RowEvent::ComPrimitive:
        return {"000", "ComPrimitive"};
    case RowEvent::Dtc:
        return {"000", "DTC"};
    case RowEvent::Error:
        return {"003", "Error"};
    case RowEvent::ProcessValue:
        return {"002", ""};
    }
    return {"000", ""};
}

const std::string& slotText(const std::vector<std::string>& slots, int slot) {
    return slots[static_cast<std::size_t>(slot)];
}

} // namespace

std::string snapshotText(const std::vector<std::string>& slots) {
    std::string text = slotText(slots, Slot::ShortName);
    if (const std::string& longName = slotText(slots, Slot::LongName); !longName.empty())
        text += " " + longName;
    if (const std::string& created = slotText(slots, Slot::Created); !created.empty())
        text += " [ " + created + " ]";
    return text;
}

std::string buildSnapshotRow(const std::vector<std::string>& slots, RowEvent event) {
    // Columns: flags, Event, Description, Name, Value, Unit.
    std::string columns[6];
    const RowLayout layout = layoutOf(event);
    columns[0] = layout.flags;
    columns[1] = layout.event;
    switch (event) {
    case RowEvent::SnapShotStart:
    case RowEvent::SnapShotStop:
        columns[2] = snapshotText(slots);
        break;
    case RowEvent::Project:
        columns[2] = slotText(slots, Slot::Project);
        break;
    case RowEvent::Vit:
        columns[2] = slotText(slots, Slot::Vit);
        break;
    case RowEvent::LinkStart:
    case RowEvent::LinkStop:
        columns[3] = slotText(slots, Slot::LinkName);
        break;
    case RowEvent::Dtc:
        columns[2] = slotText(slots, Slot::Value);
        break;
    case RowEvent::ProcessValue:
        columns[2] = "ProcessValue";
        columns[3] = slotText(slots, Slot::Name);
        columns[4] = slotText(slots, Slot::Value);
        columns[5] = slotText(slots, Slot::Unit);
        break;
    default:
        columns[2] = slotText(slots, Slot::Name);
        break;
    }
    std::string row;
    for (const std::string& column : columns) {
        row += column;
        row += Separator;
    }
    return row;
}

void SaxParserTraits<ConsumerUserInterface>::install(SaxParser<SaxParserTraits>& parser) {
    SnapshotRoutines<SaxParserTraits>::install(parser);
}

void SaxParserTraits<ConsumerUserInterface>::onRow(Context& context, RowEvent event) {
    if (context.consumer == nullptr || context.consumer->document == nullptr)
        return;
    context.consumer->document->appendSnapshotRow(buildSnapshotRow(context.slots, event));
}

void SaxParserTraits<ConsumerUserInterface>::onListCreated(Context& context) {
    if (context.consumer == nullptr || context.consumer->document == nullptr)
        return;
    if (BaseDoc::Description* description = context.consumer->document->getDescription())
        description->setField("DateTime", context.slots[Slot::Created]);
}

} // namespace ZDTAnalyzer::Snp
