#include "classic/ClassicViewLayout.h"

#include <algorithm>

namespace {

constexpr int IndexOf(ClassicColumn column) {
    return static_cast<int>(column);
}

} // namespace

ClassicColumnContent ColumnContentOf(const CAnalyzerDoc& doc) {
    ClassicColumnContent content;
    content.identifier = doc.HasIdentifierColumn();
    content.channel = doc.HasChannelColumn();
    content.priority = doc.HasPriorityColumn();
    content.source = doc.HasSourceColumn();
    content.destination = doc.HasDestinationColumn();
    return content;
}

std::array<int, ClassicColumnCount> InitialColumnWidths(const ClassicColumnContent& content) {
    std::array<int, ClassicColumnCount> widths{};
    const auto& columns = ClassicColumns();
    for (std::size_t i = 0; i < ClassicColumnCount; ++i)
        widths[i] = columns[i].width;
    if (content.identifier)
        widths[IndexOf(ClassicColumn::Identifier)] = 120;
    if (content.channel)
        widths[IndexOf(ClassicColumn::Channel)] = 60;
    if (content.priority)
        widths[IndexOf(ClassicColumn::Priority)] = 50;
    if (content.destination)
        widths[IndexOf(ClassicColumn::Destination)] = 70;
    if (content.source)
        widths[IndexOf(ClassicColumn::Source)] = 50;
    return widths;
}

bool IsColumnMenuChecked(int width) {
    return width >= ColumnMenuShownWidth;
}

int ColumnWidthAfterMenuChoice(int width, int widestTextWidth) {
    if (IsColumnMenuChecked(width))
        return 0;
    return std::max(widestTextWidth, ColumnMenuMinimumTextWidth) + ColumnMenuPadding;
}

const char* TimeColumnTitle(TimeMode mode) {
    return mode == TimeMode::Absolute ? "Time [sec]" : "Time [ms]";
}

std::string ClassicWindowTitle(const std::string& traceTitle, const std::string& path) {
    if (traceTitle == "ZDT Trace File")
        return "Diagnostic Channel " + path;
    return "CAN Onboard Channel  " + path;
}
