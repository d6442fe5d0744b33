// K-line records of both line formats: line bytes, byte blocks, addressed and priority
// frames, baud rates.

#include "ClassicTraceState.h"

namespace zdtgen {

void ClassicTraceGenerator::State::LegacyLineByte(std::uint16_t type, int variant) {
    static constexpr std::array<std::uint32_t, 3> kLengths = {1, 2, 0};
    const std::uint32_t length = Length(kLengths[variant]);
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(length);
    Sp();
    H2(random.Byte());
    Sp();
    H2(length == 2 ? random.Byte() : 0);
}

std::uint32_t ClassicTraceGenerator::State::Baud(int variant) {
    static constexpr std::array<std::uint32_t, 4> kBauds = {10400, 9600, 500000, 115200};
    return kBauds[static_cast<std::size_t>(variant) % kBauds.size()];
}

void ClassicTraceGenerator::State::LegacyBaudWithFormat(std::uint16_t type, int variant) {
    static constexpr std::array<std::uint32_t, 4> kFormats = {6, 0, 17, 0x20};
    const std::uint32_t baud = Baud(variant);
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(Length(6));
    Sp();
    H2(0);
    for (int shift = 0; shift < 32; shift += 8) {
        Sp();
        H2(baud >> shift);
    }
    Sp();
    H2(kFormats[variant]);
}

void ClassicTraceGenerator::State::LegacyBaudWithoutFormat(std::uint16_t type, int variant) {
    const std::uint32_t baud = Baud(variant);
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(Length(6));
    Sp();
    H2(0);
    Sp();
    H2(0);
    for (int shift = 0; shift < 32; shift += 8) {
        Sp();
        H2(baud >> shift);
    }
}

// Length counts priority, source and destination.
void ClassicTraceGenerator::State::LegacyPriorityFrame(std::uint16_t type, int variant) {
    static constexpr std::array<std::uint32_t, 3> kLengths = {12, 3, 7};
    static constexpr std::array<std::uint32_t, 3> kPriorities = {0x68, 0x80, 0xC1};
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(Length(kLengths[variant]));
    Sp();
    H2(kPriorities[random.Below(3)]);
    Sp();
    H2(random.OneIn(2) ? 0xF1 : 0x10);
    Sp();
    H2(random.OneIn(2) ? 0x10 : 0x33);
    DataBytes(3);
    Sp();
    DataBytes(6);
}

void ClassicTraceGenerator::State::LegacyByteBlock9(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(Length(variant == 0 ? 9 : 5));
    DataBytes(6);
    Sp();
    DataBytes(3);
    Sp();
}

void ClassicTraceGenerator::State::LegacyByteBlock8(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(Length(variant == 0 ? 8 : 3));
    DataBytes(6);
    Sp();
    DataBytes(2);
}

void ClassicTraceGenerator::State::V701LineByte(std::uint16_t type, int variant) {
    const std::uint32_t length = Length(variant == 0 ? 1 : 2);
    Head701(type);
    Time701();
    Sp();
    H4(length);
    Sp();
    H2(random.Byte());
    Sp();
    H2(length == 2 ? random.Byte() : 0);
}

void ClassicTraceGenerator::State::V701Baud(std::uint16_t type, int variant) {
    static constexpr std::array<std::uint32_t, 4> kFormats = {6, 0, 17, 25};
    Head701(type);
    if (variant % 2 == 0)
        Time701();
    else
        Dash701();
    Sp();
    line.Dec(Baud(variant), 1, ' ');
    Sp();
    line.Dec(type == 0x0030 ? kFormats[variant] : random.Below(16), 1, ' ');
}

void ClassicTraceGenerator::State::V701PriorityFrame(std::uint16_t type, int variant) {
    Head701(type);
    Time701();
    Sp();
    H4(random.OneIn(2) ? 0x68 : 0xC1);
    Sp();
    H4(0xF1);
    Sp();
    H4(random.OneIn(2) ? 0x10 : 0x33);
    Sp();
    H4(Length(variant == 0 ? 19 : 6));
    GroupedBytes({3, 5, 5, 6});
}

void ClassicTraceGenerator::State::V701AddressedFrame(std::uint16_t type, int variant) {
    Head701(type);
    Time701();
    Sp();
    H4(random.OneIn(2) ? 0x00F1 : 0x12F1);
    Sp();
    H4(random.OneIn(2) ? 0x0010 : 0x0233);
    Sp();
    H4(Length(variant == 0 ? 12 : 19));
    GroupedBytes({3, 5, 5, 6});
}

} // namespace zdtgen
