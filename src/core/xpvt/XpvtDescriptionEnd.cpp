#include "xmldoc/PrintableOnly.h"
#include "xpvt/ConsumerUserInterface.h"
#include "xpvt/XpvtDoc.h"

#include <string>

namespace ZDTAnalyzer::Xpvt {

namespace {

std::string& slotOf(UserInterfaceContext& context, int slot) {
    return context.slots[static_cast<std::size_t>(slot)];
}

// The header's DateTime attribute is "date T time": its halves join the Date and
// Time children read before. Without a T the whole text counts as the time.
void splitDateTime(UserInterfaceContext& context) {
    std::string& dateTime = slotOf(context, Slot::DateTime);
    PrintableOnly(dateTime);
    if (dateTime.empty())
        return;
    const std::size_t t = dateTime.find('T');
    if (t == std::string::npos) {
        slotOf(context, Slot::Time) += dateTime;
        return;
    }
    slotOf(context, Slot::Date).append(dateTime, 0, t);
    slotOf(context, Slot::Time).append(dateTime, t + 1, std::string::npos);
}

} // namespace

void endDescription(UserInterfaceContext& context) {
    if (context.consumer == nullptr || context.consumer->document == nullptr)
        return;
    XpvtDoc& document = *context.consumer->document;
    splitDateTime(context);

    struct Field {
        const char* name;
        int slot;
    };
    static constexpr Field fields[] = {
        {"Title", Slot::Title},
        {"Schema", Slot::Schema},
        {"ProductVersion", Slot::ProductVersion},
        {"Date", Slot::Date},
        {"Time", Slot::Time},
        {"Author", Slot::Author},
        {"Comment", Slot::Comment},
        {"Project", Slot::ProjectName},
        {"VehicleInformationTable", Slot::VehicleInformationTableName},
        {"DateTime", Slot::DateTime},
        {"LogicalLink", Slot::LogicalLinkName},
        {"DatabaseAccessKey", Slot::DatabaseAccessKey},
    };
    BaseDoc::Description* description = document.getDescription();
    for (const Field& field : fields) {
        std::string& value = slotOf(context, field.slot);
        PrintableOnly(value);
        if (description != nullptr)
            description->setField(field.name, value);
    }
    // The schema is known now: a 7.02 file reads the rest of itself with its own tables.
    document.installSchemaTables();
}

} // namespace ZDTAnalyzer::Xpvt
