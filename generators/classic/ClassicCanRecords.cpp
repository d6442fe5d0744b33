// CAN and Flex frame records of both line formats.

#include "ClassicTraceState.h"

namespace zdtgen {

// Lengths count the four identifier bytes: 3 is invalid, 13 and more give 8 data bytes.
std::uint32_t ClassicTraceGenerator::State::LegacyCanLength(int variant) {
    static constexpr std::array<std::uint32_t, 5> kLengths = {3, 4, 8, 13, 20};
    return variant < 5 ? kLengths[variant] : 5 + random.Below(8);
}

void ClassicTraceGenerator::State::LegacyIdentifierBytes(bool extended) {
    const std::uint32_t id = extended ? (0x80000000u | ExtendedId()) : StandardId();
    for (int shift = 0; shift < 32; shift += 8) {
        Sp();
        H2(id >> shift);
    }
}

void ClassicTraceGenerator::State::LegacyCanWithWord(std::uint16_t type, int variant) {
    const std::uint32_t length = Length(LegacyCanLength(variant));
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(random.Below(0x10000));
    Sp();
    H2(length);
    LegacyIdentifierBytes(variant % 2 == 1);
    DataBytes(8);
}

void ClassicTraceGenerator::State::LegacyCanPacked(std::uint16_t type, int variant) {
    const std::uint32_t length = Length(LegacyCanLength(variant));
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(length);
    LegacyIdentifierBytes(variant % 2 == 1);
    DataBytes(8);
    Sp();
}

void ClassicTraceGenerator::State::LegacyCanFrame(std::uint16_t type, int variant) {
    const bool extended = type == 0x5800 || type == 0x6800;
    std::uint32_t length = variant == 0 ? 8 : random.Below(8);
    if (options.mix == RecordMix::Traffic)
        length = random.OneIn(8) ? random.Below(8) : 8;
    Type(type);
    Sp();
    line.Text(ChannelToken());
    Sp();
    H8(extended ? ExtendedId() : StandardId());
    Sp();
    line.Dec(NextTime(), 10, '0');
    Sp();
    H4(Length(length));
    DataBytes(8);
}

void ClassicTraceGenerator::State::V701CanFrame(std::uint16_t type, int variant) {
    const bool extended = type == 0x5800 || type == 0x6800;
    std::uint32_t length = variant == 0 ? 8 : random.Below(8);
    if (options.mix == RecordMix::Traffic)
        length = random.OneIn(8) ? random.Below(8) : 8;
    Type(type);
    Sp();
    line.HexBlankPadded(extended ? ExtendedId() : StandardId(), 8);
    Sp();
    Time701();
    Sp();
    line.Dec(Length(length), 4, '0');
    Sp();
    DataBytes(8);
}

// Identifier, time and length in fixed columns 5, 14 and 25; data from column 30.
void ClassicTraceGenerator::State::FlexFrame(std::uint16_t type, int variant) {
    const std::uint32_t count = variant == 0 ? 8 : 1 + random.Below(16);
    const bool savedCase = lowerCase;
    lowerCase = variant == 1;
    Type(type);
    Sp();
    line.HexBlankPadded(1 + random.Below(2047), 8);
    Sp();
    Time701();
    Sp();
    line.Dec(Length(count), 4, ' ');
    Sp();
    FixedColumnBytes(static_cast<int>(count));
    lowerCase = savedCase;
}

// Channel letter at 5, slot at 7, identifier at 10, time at 19, length at 30, data at 35.
void ClassicTraceGenerator::State::FlexFrameSlot(std::uint16_t type, int variant) {
    const std::uint32_t count = variant == 0 ? 8 : 1 + random.Below(16);
    Type(type);
    Sp();
    line.Char(variant == 0 ? 'A' : 'B');
    Sp();
    line.Dec(random.Below(64), 2, '0');
    Sp();
    line.HexBlankPadded(1 + random.Below(2047), 8);
    Sp();
    Time701();
    Sp();
    line.Dec(Length(count), 4, ' ');
    Sp();
    FixedColumnBytes(static_cast<int>(count));
}

} // namespace zdtgen
