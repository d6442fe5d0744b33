// The reader of classic record lines for format version "701". Times are decimal and
// optional: a "-" in the time's place, or a short time column, leaves an event untimed.

#include "trace/CTraceItemI.h"
#include "trace/NibbleTables.h"
#include "trace/ScanFormat.h"

#include <algorithm>

namespace {

constexpr unsigned long FieldColumn = 5;
constexpr unsigned long TimeColumn = 14;
constexpr unsigned long TimeLastDigitColumn = 23;

bool IsDash(const char* token) {
    return token[0] == '-' && token[1] == '\0';
}

// Dash form: a one-character token, then either "-" (no time) or a decimal time.
void DashFormEvent(CTraceItemI& item, const char* fields, int reserved, std::uint32_t code, std::uint8_t severity) {
    char first[2] = {}, second[2] = {};
    ScanFormat(fields, "%1s %1s", first, second);
    if (IsDash(second)) {
        item.SetEventUntimed(code, severity);
        return;
    }
    int time = 0;
    ScanFormat(fields, "%1s %d", first, &time);
    item.SetEvent(code, 0, reserved, static_cast<std::uint32_t>(time), severity);
}

// Column time: the time stands at column 14, ten digits wide. It is stored only when the
// column's last digit is present, so a cut-off time does not pass for a complete one.
struct ColumnTime {
    std::uint32_t time;
    bool complete;
};

ColumnTime ReadColumnTime(const ScanLine& line) {
    const long value = ScanDecimalLong(line.At(TimeColumn));
    const unsigned char last = line.CharAt(TimeLastDigitColumn);
    return {static_cast<std::uint32_t>(value), last >= '0' && last <= '9'};
}

void ColumnTimeEvent(CTraceItemI& item, const ScanLine& line, int reserved, std::uint32_t code, std::uint8_t severity,
                     bool timed) {
    const ColumnTime column = ReadColumnTime(line);
    if (timed)
        item.SetEvent(code, 0, reserved, column.time, severity);
    else
        item.SetEventUntimed(code, severity);
    if (column.complete)
        item.SetTime(column.time);
}

// 440B and 440D scan their own time field for the event, then follow the column rule.
void ScannedTimeEvent(CTraceItemI& item, const ScanLine& line, int reserved, std::uint32_t code, bool withIdentifier) {
    unsigned long time = 0;
    if (withIdentifier) {
        unsigned identifier = 0;
        ScanFormat(line.At(FieldColumn), " %8X %10lu", &identifier, &time);
    } else {
        ScanFormat(line.At(TimeColumn), " %10lu", &time);
    }
    item.SetEvent(code, 0, reserved, static_cast<std::uint32_t>(time), 1);
    const ColumnTime column = ReadColumnTime(line);
    if (column.complete)
        item.SetTime(column.time);
}

void LineByte(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction) {
    char token[2] = {};
    int time = 0;
    unsigned length = 0, b0 = 0, b1 = 0;
    ScanFormat(fields, "%1s %d %04x %02x %02x", token, &time, &length, &b0, &b1);
    item.SetLineByte(reserved, static_cast<std::uint32_t>(time), direction, NarrowLength(length), b1 * 256 + b0);
}

// K-line baud rate: "-" ahead of rate and format, or a time.
void BaudrateFormat(CTraceItemI& item, const char* fields) {
    char first[2] = {}, second[2] = {};
    int baud = 0, format = 0;
    ScanFormat(fields, "%1s %1s %d %d", first, second, &baud, &format);
    if (IsDash(second)) {
        item.SetBaudrateFormatUntimed(static_cast<std::uint32_t>(format), static_cast<std::uint32_t>(baud));
        return;
    }
    int time = 0, timedBaud = 0, timedFormat = 0;
    ScanFormat(fields, "%1s %d %d %d", first, &time, &timedBaud, &timedFormat);
    item.SetBaudrateFormat(static_cast<std::uint32_t>(timedFormat), static_cast<std::uint32_t>(timedBaud),
                           static_cast<std::uint32_t>(time));
}

// CAN baud rate: "-" ahead of the rate, or a time, the rate and a second value.
void Baudrate(CTraceItemI& item, const char* fields, int reserved) {
    char first[2] = {}, second[2] = {};
    int baud = 0, unused = 0;
    ScanFormat(fields, "%1s %1s %d %d", first, second, &baud, &unused);
    if (IsDash(second)) {
        item.SetBaudrate(reserved, static_cast<std::uint32_t>(baud));
        return;
    }
    int time = 0, timedBaud = 0, secondValue = 0;
    ScanFormat(fields, "%1s %d %d %d", first, &time, &timedBaud, &secondValue);
    item.SetBaudrateTimed(static_cast<std::uint32_t>(time), static_cast<std::uint32_t>(timedBaud),
                          static_cast<std::uint32_t>(secondValue));
}

void PriorityFrame(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction) {
    char token[ScanLine::MaxLength + 1];
    int time = 0;
    unsigned priority = 0, source = 0, destination = 0, length = 0;
    unsigned values[19] = {};
    ScanFormat(fields,
               "%s %d %04x %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  "
               "%02x %02x %02x %02x %02x %02x",
               token, &time, &priority, &source, &destination, &length, &values[0], &values[1], &values[2], &values[3],
               &values[4], &values[5], &values[6], &values[7], &values[8], &values[9], &values[10], &values[11],
               &values[12], &values[13], &values[14], &values[15], &values[16], &values[17], &values[18]);
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(values, data);
    item.SetPriorityFrame(reserved, static_cast<std::uint32_t>(time), static_cast<std::uint8_t>(priority),
                          static_cast<std::uint8_t>(source), static_cast<std::uint8_t>(destination), direction,
                          NarrowLength(length), data);
}

void AddressedFrame(CTraceItemI& item, const char* fields, int reserved, std::uint8_t direction) {
    char token[ScanLine::MaxLength + 1];
    int time = 0;
    unsigned source = 0, destination = 0, length = 0;
    unsigned values[19] = {};
    ScanFormat(fields,
               "%s %d %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  "
               "%02x %02x %02x %02x %02x %02x",
               token, &time, &source, &destination, &length, &values[0], &values[1], &values[2], &values[3], &values[4],
               &values[5], &values[6], &values[7], &values[8], &values[9], &values[10], &values[11], &values[12],
               &values[13], &values[14], &values[15], &values[16], &values[17], &values[18]);
    // Room for all 19 read bytes; the frame keeps the first 17.
    std::uint8_t data[19] = {};
    NarrowBytes(values, data);
    item.SetAddressedFrame(reserved, static_cast<std::uint32_t>(time), source & 0xFF, destination & 0xFF, direction,
                           NarrowLength(length), data);
}

struct CanFrameFields {
    unsigned identifier = 0;
    unsigned long time = 0;
    int length = 0;
    unsigned values[8] = {};
};

// The fields in the layout the writers give them: identifier and time right-aligned in their
// columns. False for any other line.
bool ReadPlainCanFrame(const char* fields, std::size_t length, CanFrameFields& f) {
    PlainFieldReader in(fields, length);
    f.identifier = in.RightAlignedHex<8>();
    in.Blanks<1>();
    f.time = in.RightAlignedDecimal<10>();
    in.Blanks<1>();
    f.length = static_cast<int>(in.Decimal<4>());
    in.Blanks<1>();
    in.HexBytes(f.values);
    return in.Ok();
}

void CanFrame(CTraceItemI& item, const ScanLine& line, int reserved, std::uint8_t extended, std::uint8_t direction) {
    const char* fields = line.At(FieldColumn);
    CanFrameFields f;
    if (!ReadPlainCanFrame(fields, line.LengthFrom(FieldColumn), f)) {
        f = CanFrameFields{};
        ScanFormat(fields, " %8X %10lu %04d  %02x %02x %02x %02x %02x %02x %02x %02x", &f.identifier, &f.time,
                   &f.length, &f.values[0], &f.values[1], &f.values[2], &f.values[3], &f.values[4], &f.values[5],
                   &f.values[6], &f.values[7]);
    }
    std::uint8_t data[CTraceItemI::PayloadSize] = {};
    NarrowBytes(f.values, data);
    item.SetCanFrame(0, reserved, static_cast<std::uint32_t>(f.time), f.identifier, extended, direction,
                     NarrowLength(static_cast<std::uint32_t>(f.length)), data);
}

void PcTimeStamp(CTraceItemI& item, const char* fields, bool withName) {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char token[2] = {};
    char name[ScanLine::MaxLength + 1];
    name[0] = '\0';
    if (withName) {
        ScanFormat(fields, "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d %s", token, token, &year, token,
                   &month, token, &day, &hour, token, &minute, token, &second, name);
        item.SetMarkRecord(year, month, day, hour, minute, second, name);
        return;
    }
    ScanFormat(fields, "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d", token, token, &year, token, &month,
               token, &day, &hour, token, &minute, token, &second);
    item.SetPcTime(year, month, day, hour, minute, second);
}

} // namespace

// Flex frames sit in fixed columns; the second layout puts channel letter and slot ahead
// and moves every other column five places to the right.
void CTraceItemI::ReadFlexFrame(const ScanLine& line, bool withSlot, std::uint8_t frameFlag) {
    const unsigned long shift = withSlot ? 5 : 0;
    char letter[2] = {};
    int slot = 0;
    if (withSlot) {
        ScanFormat(line.At(5), " %1s", letter);
        ScanFormat(line.At(7), " %02d", &slot);
    }
    unsigned identifier = 0;
    unsigned long time = 0, length = 0;
    ScanFormat(line.At(5 + shift), " %8X", &identifier);
    ScanFormat(line.At(14 + shift), "%10lu", &time);
    ScanFormat(line.At(25 + shift), "%4lu", &length);
    const std::size_t stored = std::min<std::size_t>(length, DataCapacity(KindFlexFrame));
    std::uint8_t data[PayloadSize] = {};
    const unsigned long dataColumn = 30 + shift;
    for (std::size_t i = 0; i < stored; ++i) {
        const unsigned long column = dataColumn + 3 * i;
        data[i] = nibble::Byte(line.CharAt(column), line.CharAt(column + 1));
    }
    SetFlexFrame(static_cast<std::uint32_t>(time), identifier, frameFlag, static_cast<std::uint8_t>(letter[0]),
                 static_cast<std::uint8_t>(slot), static_cast<std::uint8_t>(stored), data);
}

int CTraceItemI::ParseLineV701(const char* line, int reserved) {
    const ScanLine text(line);
    if (!BeginRecord(text)) {
        SetEvent(0x20040010, 0, reserved, 0, 1);
        return 0;
    }
    const char* fields = text.At(FieldColumn);
    CTraceItemI& item = *this;
    switch (m_typeCode) {
    case 0x0000:
        DashFormEvent(item, fields, reserved, 0x00020001, 1);
        break;
    case 0x0003:
        LineByte(item, fields, reserved, 0);
        break;
    case 0x0004:
        LineByte(item, fields, reserved, 1);
        break;
    case 0x0005:
        ColumnTimeEvent(item, text, reserved, 0x40020002, 1, true);
        break;
    case 0x0006:
        ColumnTimeEvent(item, text, reserved, 0x40020003, 2, true);
        break;
    case 0x0008:
        ColumnTimeEvent(item, text, reserved, 0x00020004, 5, false);
        break;
    case 0x000A:
        ColumnTimeEvent(item, text, reserved, 0x00020005, 3, false);
        break;
    case 0x000B:
        ColumnTimeEvent(item, text, reserved, 0x20020017, 2, true);
        break;
    case 0x000C:
        ColumnTimeEvent(item, text, reserved, 0x20020018, 2, true);
        break;
    case 0x000D:
        ColumnTimeEvent(item, text, reserved, 0x20020019, 2, true);
        break;
    case 0x000E:
        ColumnTimeEvent(item, text, reserved, 0x2002001A, 2, true);
        break;
    case 0x000F:
        SetEventUntimed(0x20020009, 2);
        break;
    case 0x0030:
        BaudrateFormat(item, fields);
        break;
    case 0x0031:
        ColumnTimeEvent(item, text, reserved, 0x40020015, 2, true);
        break;
    case 0x0032:
        ColumnTimeEvent(item, text, reserved, 0x40020016, 2, true);
        break;
    case 0x0033:
        ColumnTimeEvent(item, text, reserved, 0x40020008, 2, true);
        break;
    case 0x0034:
        PriorityFrame(item, fields, reserved, 1);
        break;
    case 0x0035:
        PriorityFrame(item, fields, reserved, 0);
        break;
    case 0x8013:
        PriorityFrame(item, fields, reserved, 1);
        break;
    case 0x0038:
        ReadFlexFrame(text, false, 0);
        break;
    case 0x0039:
        ReadFlexFrame(text, false, 1);
        break;
    case 0x0040:
        ColumnTimeEvent(item, text, reserved, 0x40020006, 2, true);
        break;
    case 0x0041:
        ColumnTimeEvent(item, text, reserved, 0x40020007, 2, true);
        break;
    case 0x0050:
        AddressedFrame(item, fields, reserved, 0);
        break;
    case 0x0051:
        AddressedFrame(item, fields, reserved, 1);
        break;
    case 0x0080:
        SetEventUntimed(0x2002000A, 1);
        break;
    case 0x0090:
        ReadFlexFrame(text, true, 0);
        break;
    case 0x0091:
        ReadFlexFrame(text, true, 1);
        break;
    case 0x00FC:
        SetEventUntimed(0x20020015, 1);
        break;
    case 0x00FD:
        SetEventUntimed(0x20020016, 1);
        break;
    case 0x00FE:
        SetEventUntimed(0x2002000B, 1);
        break;
    case 0x00FF:
        // A bare "00FF" carries nothing to read a time from.
        if (text.length > 4)
            DashFormEvent(item, fields, reserved, 0x4002000C, 2);
        else
            SetEventUntimed(0x4002000C, 2);
        break;
    case 0x0400:
    case 0x4400:
        DashFormEvent(item, fields, reserved, 0x2001000F, 1);
        break;
    case 0x400A:
        Baudrate(item, fields, reserved);
        break;
    case 0x4401:
        DashFormEvent(item, fields, reserved, 0xC0010008, 1);
        break;
    case 0x4402:
        DashFormEvent(item, fields, reserved, 0x2001000A, 1);
        break;
    case 0x4403:
        DashFormEvent(item, fields, reserved, 0x80010005, 1);
        break;
    case 0x4404:
        DashFormEvent(item, fields, reserved, 0x80010006, 1);
        break;
    case 0x4405:
        DashFormEvent(item, fields, reserved, 0x80010007, 1);
        break;
    case 0x4406:
        DashFormEvent(item, fields, reserved, 0x2001000B, 1);
        break;
    case 0x4407:
        DashFormEvent(item, fields, reserved, 0x2001000C, 1);
        break;
    case 0x4408:
        DashFormEvent(item, fields, reserved, 0x2001000D, 1);
        break;
    case 0x4409:
        DashFormEvent(item, fields, reserved, 0x2001000E, 1);
        break;
    case 0x440B:
        ScannedTimeEvent(item, text, reserved, 0x20010011, false);
        break;
    case 0x440C:
        SetEventUntimed(0x20010012, 1);
        break;
    case 0x440D:
        ScannedTimeEvent(item, text, reserved, 0x20010013, true);
        break;
    case 0x5000:
        CanFrame(item, text, reserved, 0, 1);
        break;
    case 0x5800:
        CanFrame(item, text, reserved, 1, 1);
        break;
    case 0x6000:
        CanFrame(item, text, reserved, 0, 0);
        break;
    case 0x6800:
        CanFrame(item, text, reserved, 1, 0);
        break;
    case 0x5701:
        DashFormEvent(item, fields, reserved, 0x80010015, 1);
        break;
    case 0x5702:
        DashFormEvent(item, fields, reserved, 0x80010016, 2);
        break;
    case 0x5703:
        DashFormEvent(item, fields, reserved, 0x80010017, 1);
        break;
    case 0x5704:
        DashFormEvent(item, fields, reserved, 0x80010018, 1);
        break;
    case 0x5705:
        DashFormEvent(item, fields, reserved, 0x80010019, 1);
        break;
    case 0x8004:
        SetEventUntimed(0x00030003, 1);
        break;
    case 0x8005:
        SetEventUntimed(0x00030004, 1);
        break;
    case 0x800E:
        SetEventUntimed(0x20030006, 1);
        break;
    case 0x8020:
        SetEventUntimed(0x20030009, 0);
        break;
    case 0x8021:
        SetEventUntimed(0x0003000A, 0);
        break;
    case 0xFF01:
    case 0xFF02:
    case 0xFF03:
    case 0xFF04:
    case 0xFF05:
    case 0xFF06:
    case 0xFF07:
        PcTimeStamp(item, fields, false);
        break;
    case 0xFF08:
        PcTimeStamp(item, fields, true);
        break;
    default:
        SetEvent(0x20040010, 0, reserved, 0, 1);
        break;
    }
    return 0;
}
