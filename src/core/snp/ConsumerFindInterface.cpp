#include "snp/ConsumerFindInterface.h"

#include "snp/SnpDoc.h"

namespace ZDTAnalyzer::Snp {

namespace {

bool holds(const std::vector<std::string>& slots, int slot, bool on, const std::string& wanted) {
    // An empty criterion is found in every text, as the substring search finds it.
    return on && slots[static_cast<std::size_t>(slot)].find(wanted) != std::string::npos;
}

} // namespace

bool rowMatches(const SnpFindCriteria& c, const std::vector<std::string>& slots, RowEvent event) {
    switch (event) {
    case RowEvent::SnapShotStart:
    case RowEvent::SnapShotStop:
        return c.searchSnapShot && (holds(slots, Slot::ShortName, c.shortNameOn, c.shortName) ||
                                    holds(slots, Slot::LongName, c.longNameOn, c.longName) ||
                                    holds(slots, Slot::Created, c.createdOn, c.created));
    case RowEvent::LinkStart:
    case RowEvent::LinkStop:
        return c.searchLogicalLink && holds(slots, Slot::LinkName, c.linkNameOn, c.linkName);
    case RowEvent::Service:
        return c.searchService && holds(slots, Slot::Name, c.serviceNameOn, c.serviceName);
    case RowEvent::ComPrimitive:
        return c.searchComPrimitive && holds(slots, Slot::Name, c.comPrimitiveNameOn, c.comPrimitiveName);
    case RowEvent::Dtc:
        return c.searchDtc && holds(slots, Slot::Value, c.dtcValueOn, c.dtcValue);
    case RowEvent::ProcessValue:
        return c.searchProcessValue && (holds(slots, Slot::Name, c.valueNameOn, c.valueName) ||
                                        holds(slots, Slot::Unit, c.valueUnitOn, c.valueUnit) ||
                                        holds(slots, Slot::Value, c.valueTextOn, c.valueText));
    case RowEvent::Error:
    case RowEvent::Project:
    case RowEvent::Vit:
        return false;
    }
    return false;
}

void SaxParserTraits<ConsumerFindInterface>::install(SaxParser<SaxParserTraits>& parser) {
    SnapshotRoutines<SaxParserTraits>::install(parser);
}

void SaxParserTraits<ConsumerFindInterface>::onRow(Context& context, RowEvent event) {
    ConsumerFindInterface* consumer = context.consumer;
    if (consumer == nullptr || consumer->document == nullptr || consumer->criteria == nullptr)
        return;
    // Every row counts, searched or not, or every later mark would land one row off.
    const zdt::RowIndex row = consumer->row++;
    if (rowMatches(*consumer->criteria, context.slots, event))
        consumer->document->markFindResult(row);
}

} // namespace ZDTAnalyzer::Snp
