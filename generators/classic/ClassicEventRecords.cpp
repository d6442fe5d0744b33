// Event records of both line formats: time-only events, bus states and levels, channel
// events, PC time stamps, marks, and types no reader knows.

#include "ClassicTraceState.h"

namespace zdtgen {

void ClassicTraceGenerator::State::DateTime(char dateSeparator, bool yearFirst) {
    const std::uint32_t day = 1 + random.Below(28), month = 1 + random.Below(12), year = 2020 + random.Below(6);
    if (yearFirst) {
        line.Dec(year, 4, '0');
        line.Char(dateSeparator);
        line.Dec(month, 2, '0');
        line.Char(dateSeparator);
        line.Dec(day, 2, '0');
    } else {
        line.Dec(day, 2, '0');
        line.Char(dateSeparator);
        line.Dec(month, 2, '0');
        line.Char(dateSeparator);
        line.Dec(year, 4, '0');
    }
    Sp();
    line.Dec(random.Below(24), 2, '0');
    line.Char(':');
    line.Dec(random.Below(60), 2, '0');
    line.Char(':');
    line.Dec(random.Below(60), 2, '0');
}

std::string_view ClassicTraceGenerator::State::FilterName(int variant) {
    static constexpr std::array<std::string_view, 3> kNames = {"Filter_7E8.flt", "StopAll.flt",
                                                               "A_filter_name_longer_than_thirty_one_characters.flt"};
    return kNames[static_cast<std::size_t>(variant) % kNames.size()];
}

void ClassicTraceGenerator::State::LegacyTimeOnly(std::uint16_t type, int) {
    Type(type);
    Sp();
    H8(NextTime());
}

void ClassicTraceGenerator::State::LegacyCanState(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(1);
    Sp();
    H2(variant < 7 ? variant + 1 : 0x0A); // 1 to 7 and one unknown state
}

void ClassicTraceGenerator::State::LegacyBusLevel(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    H8(NextTime());
    Sp();
    H4(1);
    Sp();
    H2(variant == 0 ? 1 : 0);
}

void ClassicTraceGenerator::State::LegacyChannelEvent(std::uint16_t type, int) {
    Type(type);
    Sp();
    line.Text(ChannelToken());
    Sp();
    line.Char(random.OneIn(2) ? 'R' : 'T');
    Sp();
    line.Dec(NextTime(), 10, '0');
}

void ClassicTraceGenerator::State::LegacyNoFields(std::uint16_t type, int) {
    Type(type);
}

// Day, month, year, hour, minute, second; leading blanks are allowed.
void ClassicTraceGenerator::State::LegacyPcTime(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    if (variant == 1)
        line.Blanks(2);
    DateTime(variant == 0 ? '.' : '/', false);
}

void ClassicTraceGenerator::State::MarkRecord(std::uint16_t type, int variant) {
    Type(type);
    Sp();
    line.Text(legacy ? std::string_view("M") : Token701());
    line.Blanks(2);
    line.Char('-');
    Sp();
    DateTime(variant == 0 ? '-' : '.', true);
    if (type == 0xFF08) {
        Sp();
        line.Text(FilterName(variant));
    }
}

// Types no reader knows; the leading character keeps them records.
void ClassicTraceGenerator::State::UnknownType(std::uint16_t, int variant) {
    static constexpr std::array<std::uint16_t, 3> kTypes = {0x0099, 0x7ABC, 0xF123};
    Type(kTypes[static_cast<std::size_t>(variant) % kTypes.size()]);
    Sp();
    H8(random.Next() & 0xFFFFFFFFu);
    line.Text(" 01 02 03");
}

void ClassicTraceGenerator::State::DashForm(std::uint16_t type, int variant) {
    Head701(type);
    if (variant == 0)
        Time701();
    else
        Dash701();
}

void ClassicTraceGenerator::State::ColumnTime(std::uint16_t type, int variant) {
    Head701(type);
    if (variant == 0) {
        Time701();
        return;
    }
    // Too short to reach column 23: at most nine digits, left-aligned.
    line.Dec(NextTime() % 1000000000u, 1, ' ');
}

void ClassicTraceGenerator::State::NoFields701(std::uint16_t type, int) {
    Head701(type);
    Dash701();
}

// Dash form, or the bare type code of four characters, which reads as untimed.
void ClassicTraceGenerator::State::DashFormOrBare(std::uint16_t type, int variant) {
    if (variant == 2) {
        Type(type); // four characters only: no time
        return;
    }
    DashForm(type, variant);
}

void ClassicTraceGenerator::State::IdentifiedEvent(std::uint16_t type, int) {
    Type(type);
    Sp();
    line.HexBlankPadded(StandardId(), 8);
    Sp();
    Time701();
}

} // namespace zdtgen
