// Which records a trace gets: the type tables of both readers, the order of a streamed
// file and the type-code lists.

#include "ClassicTraceState.h"

#include <utility>

namespace zdtgen {

// Unknown types are listed under 0099; their builder also writes 7ABC and F123.
const std::vector<ClassicTraceGenerator::State::Template>& ClassicTraceGenerator::State::LegacyTemplates() {
    using S = State;
    constexpr std::uint8_t C = classic::GroupCan, K = classic::GroupKLine, E = classic::GroupEvent,
                           O = classic::GroupOther;
    static const std::vector<Template> table = {
        {0x0000, &S::LegacyTimeOnly, E, 1, 1},
        {0x0003, &S::LegacyLineByte, K, 2, 2},
        {0x0004, &S::LegacyLineByte, K, 2, 2},
        {0x0005, &S::LegacyTimeOnly, E, 1, 1},
        {0x0006, &S::LegacyTimeOnly, E, 1, 1},
        {0x0008, &S::LegacyLineByte, K, 3, 3},
        {0x000A, &S::LegacyLineByte, K, 3, 3},
        {0x000F, &S::LegacyTimeOnly, E, 1, 1},
        {0x0020, &S::LegacyCanWithWord, C, 6, 6},
        {0x0021, &S::LegacyCanWithWord, C, 6, 6},
        {0x8012, &S::LegacyCanPacked, C, 6, 6},
        {0x8013, &S::LegacyCanPacked, C, 6, 6},
        {0x0022, &S::LegacyCanState, E, 8, 8},
        {0x0030, &S::LegacyBaudWithFormat, E | K, 4, 4},
        {0x8022, &S::LegacyBaudWithoutFormat, E | K, 1, 1},
        {0x0031, &S::LegacyBusLevel, E, 2, 2},
        {0x0032, &S::LegacyBusLevel, E, 2, 2},
        {0x0033, &S::LegacyTimeOnly, E, 1, 1},
        {0x0034, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0035, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0036, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0037, &S::LegacyByteBlock9, K, 2, 2},
        {0x0080, &S::LegacyTimeOnly, E, 1, 1},
        {0x00FE, &S::LegacyTimeOnly, E, 1, 1},
        {0x00FF, &S::LegacyTimeOnly, E, 1, 1},
        {0x4400, &S::LegacyChannelEvent, E, 1, 1},
        {0x4401, &S::LegacyChannelEvent, E, 1, 1},
        {0x4402, &S::LegacyChannelEvent, E, 1, 1},
        {0x4403, &S::LegacyChannelEvent, E, 1, 1},
        {0x4404, &S::LegacyChannelEvent, E, 1, 1},
        {0x4405, &S::LegacyChannelEvent, E, 1, 1},
        {0x4406, &S::LegacyChannelEvent, E, 1, 1},
        {0x4407, &S::LegacyChannelEvent, E, 1, 1},
        {0x4408, &S::LegacyChannelEvent, E, 1, 1},
        {0x4409, &S::LegacyChannelEvent, E, 1, 1},
        {0x5000, &S::LegacyCanFrame, C, 2, 2},
        {0x5800, &S::LegacyCanFrame, C, 2, 2},
        {0x6000, &S::LegacyCanFrame, C, 2, 2},
        {0x6800, &S::LegacyCanFrame, C, 2, 2},
        {0x8000, &S::LegacyTimeOnly, E, 1, 1},
        {0x8001, &S::LegacyTimeOnly, E, 1, 1},
        {0x8002, &S::LegacyLineByte, K, 3, 3},
        {0x8003, &S::LegacyLineByte, K, 3, 3},
        {0x8004, &S::LegacyTimeOnly, E, 1, 1},
        {0x8005, &S::LegacyTimeOnly, E, 1, 1},
        {0x800E, &S::LegacyTimeOnly, E, 1, 1},
        {0x800F, &S::LegacyTimeOnly, E, 1, 1},
        {0x801E, &S::LegacyTimeOnly, E, 1, 1},
        {0x801F, &S::LegacyTimeOnly, E, 1, 1},
        {0x8020, &S::LegacyTimeOnly, E, 1, 1},
        {0x8021, &S::LegacyTimeOnly, E, 1, 1},
        {0x8023, &S::LegacyByteBlock8, K, 2, 2},
        {0x8024, &S::LegacyByteBlock8, K, 2, 2},
        {0x8025, &S::LegacyTimeOnly, E, 1, 1},
        {0x8026, &S::LegacyTimeOnly, E, 1, 1},
        {0xFF00, &S::LegacyNoFields, E, 1, 1},
        {0xFF01, &S::LegacyNoFields, E, 1, 1},
        {0xFF02, &S::LegacyNoFields, E, 1, 1},
        {0xFF03, &S::LegacyNoFields, E, 1, 1},
        {0xFF04, &S::LegacyNoFields, E, 1, 1},
        {0xFF05, &S::LegacyNoFields, E, 1, 1},
        {0xFF06, &S::LegacyNoFields, E, 1, 1},
        {0xFF07, &S::LegacyPcTime, E, 2, 2},
        {0xFF08, &S::MarkRecord, E, 3, 2},
        {0x0099, &S::UnknownType, O, 3, 3},
    };
    return table;
}

const std::vector<ClassicTraceGenerator::State::Template>& ClassicTraceGenerator::State::V701Templates() {
    using S = State;
    constexpr std::uint8_t C = classic::GroupCan, K = classic::GroupKLine, E = classic::GroupEvent,
                           O = classic::GroupOther;
    static const std::vector<Template> table = {
        {0x0000, &S::DashForm, E, 2, 2},           {0x0003, &S::V701LineByte, K, 2, 2},
        {0x0004, &S::V701LineByte, K, 2, 2},       {0x0005, &S::ColumnTime, E, 2, 1},
        {0x0006, &S::ColumnTime, E, 2, 1},         {0x0008, &S::ColumnTime, E, 2, 1},
        {0x000A, &S::ColumnTime, E, 2, 1},         {0x000B, &S::ColumnTime, E, 2, 1},
        {0x000C, &S::ColumnTime, E, 2, 1},         {0x000D, &S::ColumnTime, E, 2, 1},
        {0x000E, &S::ColumnTime, E, 2, 1},         {0x000F, &S::NoFields701, E, 1, 1},
        {0x0030, &S::V701Baud, E | K, 4, 4},       {0x0031, &S::ColumnTime, E, 2, 1},
        {0x0032, &S::ColumnTime, E, 2, 1},         {0x0033, &S::ColumnTime, E, 2, 1},
        {0x0034, &S::V701PriorityFrame, K, 2, 2},  {0x0035, &S::V701PriorityFrame, K, 2, 2},
        {0x8013, &S::V701PriorityFrame, K, 2, 2},  {0x0038, &S::FlexFrame, O, 2, 2},
        {0x0039, &S::FlexFrame, O, 2, 2},          {0x0040, &S::ColumnTime, E, 2, 1},
        {0x0041, &S::ColumnTime, E, 2, 1},         {0x0050, &S::V701AddressedFrame, K, 2, 2},
        {0x0051, &S::V701AddressedFrame, K, 2, 2}, {0x0080, &S::NoFields701, E, 1, 1},
        {0x0090, &S::FlexFrameSlot, O, 2, 2},      {0x0091, &S::FlexFrameSlot, O, 2, 2},
        {0x00FC, &S::NoFields701, E, 1, 1},        {0x00FD, &S::NoFields701, E, 1, 1},
        {0x00FE, &S::NoFields701, E, 1, 1},        {0x00FF, &S::DashFormOrBare, E, 3, 3},
        {0x0400, &S::DashForm, E, 2, 2},           {0x4400, &S::DashForm, E, 2, 2},
        {0x400A, &S::V701Baud, E, 2, 2},           {0x4401, &S::DashForm, E, 2, 2},
        {0x4402, &S::DashForm, E, 2, 2},           {0x4403, &S::DashForm, E, 2, 2},
        {0x4404, &S::DashForm, E, 2, 2},           {0x4405, &S::DashForm, E, 2, 2},
        {0x4406, &S::DashForm, E, 2, 2},           {0x4407, &S::DashForm, E, 2, 2},
        {0x4408, &S::DashForm, E, 2, 2},           {0x4409, &S::DashForm, E, 2, 2},
        {0x440B, &S::ColumnTime, E, 2, 1},         {0x440C, &S::NoFields701, E, 1, 1},
        {0x440D, &S::IdentifiedEvent, E, 1, 1},    {0x5000, &S::V701CanFrame, C, 2, 2},
        {0x5800, &S::V701CanFrame, C, 2, 2},       {0x6000, &S::V701CanFrame, C, 2, 2},
        {0x6800, &S::V701CanFrame, C, 2, 2},       {0x5701, &S::DashForm, E, 2, 2},
        {0x5702, &S::DashForm, E, 2, 2},           {0x5703, &S::DashForm, E, 2, 2},
        {0x5704, &S::DashForm, E, 2, 2},           {0x5705, &S::DashForm, E, 2, 2},
        {0x8004, &S::NoFields701, E, 1, 1},        {0x8005, &S::NoFields701, E, 1, 1},
        {0x800E, &S::NoFields701, E, 1, 1},        {0x8020, &S::NoFields701, E, 1, 1},
        {0x8021, &S::NoFields701, E, 1, 1},        {0xFF01, &S::MarkRecord, E, 1, 1},
        {0xFF02, &S::MarkRecord, E, 1, 1},         {0xFF03, &S::MarkRecord, E, 1, 1},
        {0xFF04, &S::MarkRecord, E, 1, 1},         {0xFF05, &S::MarkRecord, E, 1, 1},
        {0xFF06, &S::MarkRecord, E, 1, 1},         {0xFF07, &S::MarkRecord, E, 2, 2},
        {0xFF08, &S::MarkRecord, E, 3, 2},         {0x0099, &S::UnknownType, O, 2, 2},
    };
    return table;
}

// A bus log: about 97 % frames, the rest bus events and now and then a PC time stamp.
void ClassicTraceGenerator::State::BuildTrafficRecord() {
    const std::uint32_t roll = random.Below(1000);
    if (roll >= 30) {
        static constexpr std::array<std::uint16_t, 8> kFrames = {0x5000, 0x5000, 0x5000, 0x6000,
                                                                 0x6000, 0x6000, 0x5800, 0x6800};
        BuildType(kFrames[random.Below(kFrames.size())], 0);
        return;
    }
    if (roll == 0) {
        BuildType(0xFF07, 0);
        return;
    }
    static constexpr std::array<std::uint16_t, 6> kEvents = {0x4401, 0x4401, 0x4406, 0x4403, 0x4404, 0x4405};
    BuildType(kEvents[random.Below(kEvents.size())], 0);
}

void ClassicTraceGenerator::State::BuildStreamRecord() {
    line.Clear();
    lowerCase = options.mix == RecordMix::All && random.OneIn(4);
    if (options.mix == RecordMix::Traffic) {
        BuildTrafficRecord();
        return;
    }
    const auto& table = Templates();
    std::uint16_t pick;
    if (options.mix == RecordMix::All) {
        // Every type once per block, in a new order each block.
        if (blockPosition == 0)
            for (std::size_t i = mixTemplates.size(); i > 1; --i)
                std::swap(mixTemplates[i - 1], mixTemplates[random.Below(static_cast<std::uint32_t>(i))]);
        pick = mixTemplates[blockPosition];
        blockPosition = (blockPosition + 1) % mixTemplates.size();
    } else {
        pick = mixTemplates[random.Below(static_cast<std::uint32_t>(mixTemplates.size()))];
    }
    const Template& t = table[pick];
    BuildFromTemplate(t, static_cast<int>(random.Below(t.streamVariants)));
}

std::vector<std::string> ClassicTraceGenerator::State::AllTypeLines() {
    listMode = true;
    bigGapOneIn = 5;
    std::vector<std::string> lines;
    int lineNumber = 0;
    for (const auto& t : Templates())
        for (int variant = 0; variant < t.variants; ++variant) {
            line.Clear();
            lowerCase = ++lineNumber % 3 == 0;
            BuildFromTemplate(t, variant);
            lines.push_back(line.Str());
        }
    listMode = false;
    return lines;
}

} // namespace zdtgen
