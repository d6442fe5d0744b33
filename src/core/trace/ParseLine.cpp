// The reader of classic record lines for format versions "2", "5", "501" and "601".
// Times are hexadecimal; every row ends by storing its time, 0 when it reads none.

#include "trace/CTraceItemI.h"
#include "trace/ScanFormat.h"

namespace {

constexpr unsigned long FieldColumn = 5;

// Rows that hold only a time: " %08x".
std::uint32_t TimeOnlyEvent(CTraceItemI& item, const char* fields, int reserved, std::uint32_t code,
                            std::uint8_t severity) {
    unsigned time = 0;
    ScanFormat(fields, " %08x", &time);
    item.SetEvent(code, 0, reserved, time, severity);
    return time;
}

// K-line bytes. The length-2 bit does not survive SetLineByte, which keeps the low byte.
std::uint32_t LineByte(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction, bool emptyIsBlank) {
    unsigned time = 0, length = 0, b0 = 0, b1 = 0;
    ScanFormat(fields, "%08x %04x %02x %02x", &time, &length, &b0, &b1);
    std::uint32_t value = b0;
    if (emptyIsBlank && length == 0)
        value = 0x20;
    if (length == 2)
        value |= 0x100;
    item.SetLineByte(reserved, time, direction, NarrowLength(length), value);
    return time;
}

// CAN frames whose length field counts the four identifier bytes ahead of the data.
struct LegacyFrameFields {
    unsigned time = 0, skipped = 0, length = 0;
    unsigned id[4] = {};
    unsigned values[8] = {};
};

// The fields in the layout the writers give them; false for any other line.
bool ReadPlainLegacyFrame(const char* fields, std::size_t length, bool skippedWord, LegacyFrameFields& f) {
    PlainFieldReader in(fields, length);
    f.time = in.Hex<8>();
    in.Blanks<1>();
    if (skippedWord) {
        f.skipped = in.Hex<4>();
        in.Blanks<1>();
        f.length = in.Hex<2>();
    } else {
        f.length = in.Hex<4>();
    }
    in.HexBytes(f.id);
    in.HexBytes(f.values);
    return in.Ok();
}

void ScanLegacyFrame(const char* fields, bool skippedWord, LegacyFrameFields& f) {
    if (skippedWord)
        ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x", &f.time,
                   &f.skipped, &f.length, &f.id[0], &f.id[1], &f.id[2], &f.id[3], &f.values[0], &f.values[1],
                   &f.values[2], &f.values[3], &f.values[4], &f.values[5], &f.values[6], &f.values[7]);
    else
        ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x ", &f.time, &f.length,
                   &f.id[0], &f.id[1], &f.id[2], &f.id[3], &f.values[0], &f.values[1], &f.values[2], &f.values[3],
                   &f.values[4], &f.values[5], &f.values[6], &f.values[7]);
}

std::uint32_t LegacyCanFrame(CTraceItemI& item, const ScanLine& line, int reserved, std::uint8_t direction,
                             bool skippedWord) {
    const char* fields = line.At(FieldColumn);
    LegacyFrameFields f;
    if (!ReadPlainLegacyFrame(fields, line.LengthFrom(FieldColumn), skippedWord, f)) {
        f = LegacyFrameFields{};
        ScanLegacyFrame(fields, skippedWord, f);
    }
    if (f.length < 4) {
        item.SetEvent(0x50080016, 0, reserved, f.time, 0);
        return f.time;
    }
    const std::uint8_t dataLength = f.length >= 13 ? 8 : static_cast<std::uint8_t>(f.length - 4);
    std::uint32_t identifier = f.id[0] + f.id[1] * 0x100u + f.id[2] * 0x10000u + f.id[3] * 0x1000000u;
    std::uint8_t extended = 0;
    if (identifier & 0x80000000u) {
        extended = 1;
        identifier &= 0x7FFFFFFFu;
    }
    std::uint8_t data[8] = {};
    NarrowBytes(f.values, data);
    item.SetCanFrame(0, reserved, f.time, identifier, extended, direction, dataLength, data);
    return f.time;
}

std::uint32_t CanState(CTraceItemI& item, const char* fields) {
    unsigned time = 0, length = 0, state = 0;
    ScanFormat(fields, "%08x %04x %02x", &time, &length, &state);
    item.SetCanState(state, time);
    return time;
}

// Baud rate lines: 0030 holds the rate in b1..b4 and the format in b5; 8022 holds the
// rate in b2..b5 and no format at all, so it reads as format unknown.
std::uint32_t BaudrateFormat(CTraceItemI& item, const char* fields, bool formatInLine) {
    unsigned time = 0, length = 0;
    unsigned b[6] = {};
    ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x", &time, &length, &b[0], &b[1], &b[2], &b[3], &b[4],
               &b[5]);
    const unsigned* rate = formatInLine ? &b[1] : &b[2];
    const std::uint32_t baud = rate[0] + rate[1] * 256u + rate[2] * 65536u + rate[3] * 16777216u;
    constexpr std::uint32_t NoFormat = 0xFFFFFFFFu;
    item.SetBaudrateFormat(formatInLine ? b[5] : NoFormat, baud, time);
    return time;
}

std::uint32_t BusLevel(CTraceItemI& item, const char* fields, int reserved, std::uint32_t startCode,
                       std::uint32_t levelCode) {
    unsigned time = 0, length = 0, b0 = 0;
    ScanFormat(fields, " %08x %04x %02x", &time, &length, &b0);
    item.SetEvent(b0 == 1 ? startCode : levelCode, 0, reserved, time, 0);
    return time;
}

// J2190 frames: the length counts priority, source and destination ahead of the data.
std::uint32_t PriorityFrame(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction) {
    unsigned time = 0, length = 0, priority = 0, source = 0, destination = 0;
    unsigned values[9] = {};
    ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x %02x", &time, &length,
               &priority, &source, &destination, &values[0], &values[1], &values[2], &values[3], &values[4], &values[5],
               &values[6], &values[7], &values[8]);
    const std::uint32_t dataLength = length < 4 ? 0 : length - 3;
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(values, data);
    item.SetPriorityFrame(reserved, time, static_cast<std::uint8_t>(priority), static_cast<std::uint8_t>(source),
                          static_cast<std::uint8_t>(destination), direction, NarrowLength(dataLength), data);
    return time;
}

std::uint32_t ByteBlockOfNine(CTraceItemI& item, const char* fields, int reserved) {
    unsigned time = 0, length = 0;
    unsigned values[9] = {};
    ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x ", &time, &length, &values[0],
               &values[1], &values[2], &values[3], &values[4], &values[5], &values[6], &values[7], &values[8]);
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(values, data);
    item.SetByteBlock(reserved, time, 1, NarrowLength(length), data);
    return time;
}

std::uint32_t ByteBlockOfEight(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction) {
    unsigned time = 0, length = 0;
    unsigned values[8] = {};
    ScanFormat(fields, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x", &time, &length, &values[0], &values[1],
               &values[2], &values[3], &values[4], &values[5], &values[6], &values[7]);
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(values, data);
    item.SetByteBlock(reserved, time, direction, NarrowLength(length), data);
    return time;
}

// CAN card events 4400..4409, on the channel the line names; the time is decimal.
std::uint32_t ChannelEvent(CTraceItemI& item, const char* fields, int reserved, std::uint16_t type) {
    static constexpr std::uint32_t Codes[10] = {0x2001000F, 0xC0010008, 0x2001000A, 0x80010005, 0x80010006,
                                                0x80010007, 0x2001000B, 0x2001000C, 0x2001000D, 0x20010010};
    unsigned channel = 0;
    char token[2] = {};
    int time = 0;
    ScanFormat(fields, "%02x %01s %010d", &channel, token, &time);
    item.SetEvent(Codes[type - 0x4400], static_cast<std::uint8_t>(channel), reserved, static_cast<std::uint32_t>(time),
                  1);
    return static_cast<std::uint32_t>(time);
}

struct ChannelFrameFields {
    unsigned channel = 0, identifier = 0, length = 0;
    int time = 0;
    unsigned values[8] = {};
};

// The fields in the layout the writers give them; false for any other line.
bool ReadPlainChannelFrame(const char* fields, std::size_t length, ChannelFrameFields& f) {
    PlainFieldReader in(fields, length);
    f.channel = in.Hex<2>();
    in.Blanks<1>();
    f.identifier = in.Hex<8>();
    in.Blanks<1>();
    // "%010d" stores into an int, keeping the low bits of what it read.
    f.time = static_cast<int>(in.Decimal<10>());
    in.Blanks<1>();
    f.length = in.Hex<4>();
    in.HexBytes(f.values);
    return in.Ok();
}

std::uint32_t ChannelCanFrame(CTraceItemI& item, const ScanLine& line, int reserved, std::uint8_t extended,
                              std::uint8_t direction) {
    const char* fields = line.At(FieldColumn);
    ChannelFrameFields f;
    if (!ReadPlainChannelFrame(fields, line.LengthFrom(FieldColumn), f)) {
        f = ChannelFrameFields{};
        ScanFormat(fields, "%02x %08x %010d %04x %02x %02x %02x %02x %02x %02x %02x %02x", &f.channel, &f.identifier,
                   &f.time, &f.length, &f.values[0], &f.values[1], &f.values[2], &f.values[3], &f.values[4],
                   &f.values[5], &f.values[6], &f.values[7]);
    }
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(f.values, data);
    item.SetCanFrame(static_cast<std::uint8_t>(f.channel), reserved, static_cast<std::uint32_t>(f.time), f.identifier,
                     extended, direction, NarrowLength(f.length), data);
    return static_cast<std::uint32_t>(f.time);
}

// Marks FF00..FF06: their text comes from the type, the code only tells them apart.
void MarkEvent(CTraceItemI& item, int reserved, std::uint16_t type) {
    static constexpr std::uint32_t Codes[7] = {0x50080915, 0x50080916, 0x50080815, 0x50080715,
                                               0x50080716, 0x50080615, 0x50080515};
    item.SetEvent(Codes[type - 0xFF00], 0, reserved, 0, 2);
}

void PcTimeStamp(CTraceItemI& item, const char* fields) {
    while (*fields == ' ')
        ++fields;
    int day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
    char separator[2] = {};
    ScanFormat(fields, "%02d %01s %02d %01s %04d %02d %01s %02d %01s %02d", &day, separator, &month, separator, &year,
               &hour, separator, &minute, separator, &second);
    item.SetPcTime(year, month, day, hour, minute, second);
}

void FilterMark(CTraceItemI& item, const char* fields) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char token[2] = {};
    char name[ScanLine::MaxLength + 1];
    name[0] = '\0';
    ScanFormat(fields, "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d %s", token, token, &year, token, &month,
               token, &day, &hour, token, &minute, token, &second, name);
    item.SetMarkRecord(year, month, day, hour, minute, second, name);
}

} // namespace

int CTraceItemI::ParseLine(const char* line, int reserved) {
    const ScanLine text(line);
    if (!BeginRecord(text)) {
        SetEvent(0x20040010, 0, reserved, 0, 1);
        SetTime(0);
        return 0;
    }
    const char* fields = text.At(FieldColumn);
    std::uint32_t time = 0;
    CTraceItemI& item = *this;
    const std::uint16_t type = m_typeCode;
    switch (type) {
    case 0x0000:
        time = TimeOnlyEvent(item, fields, reserved, 0x00020001, 1);
        break;
    case 0x0003:
        time = LineByte(item, fields, reserved, 0, false);
        break;
    case 0x0004:
        time = LineByte(item, fields, reserved, 1, false);
        break;
    case 0x0005:
        time = TimeOnlyEvent(item, fields, reserved, 0x40020002, 1);
        break;
    case 0x0006:
        time = TimeOnlyEvent(item, fields, reserved, 0x40020003, 2);
        break;
    case 0x0008:
        time = LineByte(item, fields, reserved, 1, true);
        break;
    case 0x000A:
        time = LineByte(item, fields, reserved, 0, true);
        break;
    case 0x000F:
        time = TimeOnlyEvent(item, fields, reserved, 0x20020009, 1);
        break;
    case 0x0020:
        time = LegacyCanFrame(item, text, reserved, 1, true);
        break;
    case 0x0021:
        time = LegacyCanFrame(item, text, reserved, 0, true);
        break;
    case 0x0022:
        time = CanState(item, fields);
        break;
    case 0x0030:
        time = BaudrateFormat(item, fields, true);
        break;
    case 0x0031:
        time = BusLevel(item, fields, reserved, 0x40020006, 0x40020015);
        break;
    case 0x0032:
        time = BusLevel(item, fields, reserved, 0x40020007, 0x40020016);
        break;
    case 0x0033:
        time = TimeOnlyEvent(item, fields, reserved, 0x40020008, 2);
        break;
    case 0x0034:
        time = PriorityFrame(item, fields, reserved, 1);
        break;
    case 0x0035:
        time = PriorityFrame(item, fields, reserved, 0);
        break;
    case 0x0036:
        time = PriorityFrame(item, fields, reserved, 1);
        break;
    case 0x0037:
        time = ByteBlockOfNine(item, fields, reserved);
        break;
    case 0x0080:
        time = TimeOnlyEvent(item, fields, reserved, 0x2002000A, 1);
        break;
    case 0x00FE:
        time = TimeOnlyEvent(item, fields, reserved, 0x2002000B, 1);
        break;
    case 0x00FF:
        time = TimeOnlyEvent(item, fields, reserved, 0x4002000C, 0);
        break;
    case 0x4400:
    case 0x4401:
    case 0x4402:
    case 0x4403:
    case 0x4404:
    case 0x4405:
    case 0x4406:
    case 0x4407:
    case 0x4408:
    case 0x4409:
        time = ChannelEvent(item, fields, reserved, type);
        break;
    case 0x5000:
    case 0x6000:
        time = ChannelCanFrame(item, text, reserved, 0, 1);
        break;
    case 0x5800:
    case 0x6800:
        time = ChannelCanFrame(item, text, reserved, 1, 0);
        break;
    case 0x8000:
        time = TimeOnlyEvent(item, fields, reserved, 0x40030001, 0);
        break;
    case 0x8001:
        time = TimeOnlyEvent(item, fields, reserved, 0x40030002, 0);
        break;
    case 0x8002:
        time = LineByte(item, fields, reserved, 0, false);
        break;
    case 0x8003:
        time = LineByte(item, fields, reserved, 1, false);
        break;
    case 0x8004:
        time = TimeOnlyEvent(item, fields, reserved, 0x00030003, 1);
        break;
    case 0x8005:
        time = TimeOnlyEvent(item, fields, reserved, 0x00030004, 1);
        break;
    case 0x800E:
        time = TimeOnlyEvent(item, fields, reserved, 0x20030005, 1);
        break;
    case 0x800F:
        time = TimeOnlyEvent(item, fields, reserved, 0x20030006, 1);
        break;
    case 0x8012:
        time = LegacyCanFrame(item, text, reserved, 0, false);
        break;
    case 0x8013:
        time = LegacyCanFrame(item, text, reserved, 1, false);
        break;
    case 0x801E:
        time = TimeOnlyEvent(item, fields, reserved, 0x20030007, 1);
        break;
    case 0x801F:
        time = TimeOnlyEvent(item, fields, reserved, 0x20030008, 1);
        break;
    case 0x8020:
        time = TimeOnlyEvent(item, fields, reserved, 0x20030009, 1);
        break;
    case 0x8021:
        time = TimeOnlyEvent(item, fields, reserved, 0x0003000A, 1);
        break;
    case 0x8022:
        time = BaudrateFormat(item, fields, false);
        break;
    case 0x8023:
        time = ByteBlockOfEight(item, fields, reserved, 0);
        break;
    case 0x8024:
        time = ByteBlockOfEight(item, fields, reserved, 1);
        break;
    case 0x8025:
        time = TimeOnlyEvent(item, fields, reserved, 0x2003000D, 0);
        break;
    case 0x8026:
        time = TimeOnlyEvent(item, fields, reserved, 0x2003000E, 0);
        break;
    case 0xFF00:
    case 0xFF01:
    case 0xFF02:
    case 0xFF03:
    case 0xFF04:
    case 0xFF05:
    case 0xFF06:
        MarkEvent(item, reserved, type);
        break;
    case 0xFF07:
        PcTimeStamp(item, fields);
        break;
    case 0xFF08:
        FilterMark(item, fields);
        break;
    default:
        SetEvent(0x20040010, 0, reserved, 0, 1);
        break;
    }
    SetTime(time);
    return 0;
}
