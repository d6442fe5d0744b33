// The reader of format version 701: decimal times that may be missing, fixed columns.

#include "support/RecordProbe.h"
#include "trace/CTraceItemI.h"
#include "trace/NibbleTables.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Read : RecordProbe {
    explicit Read(const std::string& line) { EXPECT_EQ(item.ParseLineV701(line.c_str(), 1), 0); }
};

// A line whose time stands in the ten columns 14..23.
std::string ColumnTimeLine(const char* type, const char* time) {
    return std::string(type) + "          " + time;
}

std::string FlexLine(const char* type, unsigned identifier, unsigned time, unsigned length, const char* data) {
    char line[300];
    std::snprintf(line, sizeof line, "%s %8X %010u %4u %s", type, identifier, time, length, data);
    return line;
}

std::string SlotFlexLine(const char* type, const char* letter, int slot, unsigned identifier, unsigned time,
                         unsigned length, const char* data) {
    char line[300];
    std::snprintf(line, sizeof line, "%s %s %02d %8X %010u %4u %s", type, letter, slot, identifier, time, length, data);
    return line;
}

} // namespace

TEST(ParseLineV701, DashFormEventsAreUntimedOnADash) {
    const struct {
        const char* type;
        std::uint32_t code;
        std::uint8_t severity;
    } rows[] = {
        {"0000", 0x00020001, 1}, {"00FF", 0x4002000C, 2}, {"0400", 0x2001000F, 1}, {"4400", 0x2001000F, 1},
        {"4401", 0xC0010008, 1}, {"4402", 0x2001000A, 1}, {"4403", 0x80010005, 1}, {"4404", 0x80010006, 1},
        {"4405", 0x80010007, 1}, {"4406", 0x2001000B, 1}, {"4407", 0x2001000C, 1}, {"4408", 0x2001000D, 1},
        {"4409", 0x2001000E, 1}, {"5701", 0x80010015, 1}, {"5702", 0x80010016, 2}, {"5703", 0x80010017, 1},
        {"5704", 0x80010018, 1}, {"5705", 0x80010019, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read timed(std::string(row.type) + " x 123456");
        EXPECT_EQ(timed.Kind(), KindEvent);
        EXPECT_EQ(timed.Code(), row.code);
        EXPECT_EQ(timed.Severity(), row.severity);
        EXPECT_TRUE(timed.item.HasTime());
        EXPECT_EQ(timed.Time(), 123456u);
        const Read untimed(std::string(row.type) + " x -");
        EXPECT_EQ(untimed.Code(), row.code);
        EXPECT_FALSE(untimed.item.HasTime());
    }
    EXPECT_FALSE(Read("0000 x -5").item.HasTime()) << "the time token is read one character wide";
    EXPECT_EQ(Read("0000 x 5-").Time(), 5u);
    EXPECT_EQ(Read("0000 x").Time(), 0u);
}

TEST(ParseLineV701, ABareFFLineIsAnEventWithoutTime) {
    const Read bare("00FF");
    EXPECT_EQ(bare.Code(), 0x4002000Cu);
    EXPECT_FALSE(bare.item.HasTime());
    const Read blank("00FF ");
    EXPECT_TRUE(blank.item.HasTime()) << "a fifth character lets the dash form read, and it finds no dash";
}

TEST(ParseLineV701, ColumnTimeEventsStoreTheTimeOnlyWhenItsLastDigitIsThere) {
    const struct {
        const char* type;
        std::uint32_t code;
        std::uint8_t severity;
        bool timed;
    } rows[] = {
        {"0005", 0x40020002, 1, true},  {"0006", 0x40020003, 2, true}, {"0008", 0x00020004, 5, false},
        {"000A", 0x00020005, 3, false}, {"000B", 0x20020017, 2, true}, {"000C", 0x20020018, 2, true},
        {"000D", 0x20020019, 2, true},  {"000E", 0x2002001A, 2, true}, {"0031", 0x40020015, 2, true},
        {"0032", 0x40020016, 2, true},  {"0033", 0x40020008, 2, true}, {"0040", 0x40020006, 2, true},
        {"0041", 0x40020007, 2, true},  {"440B", 0x20010011, 1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read full(ColumnTimeLine(row.type, "0001234567"));
        EXPECT_EQ(full.Code(), row.code);
        EXPECT_EQ(full.Severity(), row.severity);
        EXPECT_TRUE(full.item.HasTime());
        EXPECT_EQ(full.Time(), 1234567u);
        const Read cut(ColumnTimeLine(row.type, "12345"));
        EXPECT_EQ(cut.Code(), row.code);
        EXPECT_EQ(cut.item.HasTime(), row.timed) << "no SetTime without the digit at column 23";
        if (row.timed) {
            EXPECT_EQ(cut.Time(), 12345u);
        }
    }
    EXPECT_FALSE(Read("0008").item.HasTime());
    EXPECT_FALSE(Read(ColumnTimeLine("0008", "000000123x")).item.HasTime());
    EXPECT_EQ(Read("0005").Time(), 0u);
    // 440D reads an identifier ahead of the time, which no record field keeps.
    const Read withIdentifier("440D 1ABCDEF0 0000004711");
    EXPECT_EQ(withIdentifier.Code(), 0x20010013u);
    EXPECT_EQ(withIdentifier.Time(), 4711u);
    EXPECT_EQ(Read("440D 1ABCDEF0 12345").Time(), 12345u);
}

TEST(ParseLineV701, EventsThatNeverCarryATime) {
    const struct {
        const char* type;
        std::uint32_t code;
        std::uint8_t severity;
    } rows[] = {
        {"000F", 0x20020009, 2}, {"0080", 0x2002000A, 1}, {"00FC", 0x20020015, 1}, {"00FD", 0x20020016, 1},
        {"00FE", 0x2002000B, 1}, {"440C", 0x20010012, 1}, {"8004", 0x00030003, 1}, {"8005", 0x00030004, 1},
        {"800E", 0x20030006, 1}, {"8020", 0x20030009, 0}, {"8021", 0x0003000A, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read r(ColumnTimeLine(row.type, "0000001000"));
        EXPECT_EQ(r.Code(), row.code);
        EXPECT_EQ(r.Severity(), row.severity);
        EXPECT_FALSE(r.item.HasTime());
    }
}

TEST(ParseLineV701, LineBytesBaudRates) {
    for (const auto& [type, direction] : {std::pair{"0003", 0}, {"0004", 1}}) {
        const Read r(std::string(type) + " x 4711 0002 41 01");
        EXPECT_EQ(r.Kind(), KindLineByte) << type;
        EXPECT_EQ(r.Direction(), direction) << type;
        EXPECT_EQ(r.Time(), 4711u) << type;
        EXPECT_EQ(r.Data(), Bytes{0x41}) << type;
    }

    const Read untimedFormat("0030 x - 10400 8");
    EXPECT_EQ(untimedFormat.Kind(), KindBaudrateFormat);
    EXPECT_FALSE(untimedFormat.item.HasTime());
    EXPECT_EQ(untimedFormat.Text(), "Baudrate: 10400 Format 8E1");
    const Read timedFormat("0030 x 555 9600 17");
    EXPECT_TRUE(timedFormat.item.HasTime());
    EXPECT_EQ(timedFormat.Time(), 555u);
    EXPECT_EQ(timedFormat.Text(), "Baudrate: 9600 Format 9E2");
    EXPECT_EQ(Read("0030 x 555 9600 18").Text(), "Baudrate: 9600 Data Format Unknown");

    const Read untimedRate("400A x - 500000");
    EXPECT_EQ(untimedRate.Kind(), KindBaudrate);
    EXPECT_FALSE(untimedRate.item.HasTime());
    EXPECT_EQ(untimedRate.Text(), "Baudrate: 500000");
    const Read timedRate("400A x 777 250000 3");
    EXPECT_TRUE(timedRate.item.HasTime());
    EXPECT_EQ(timedRate.Time(), 777u);
    EXPECT_EQ(timedRate.Text(), "Baudrate: 250000");
}

TEST(ParseLineV701, PriorityAndAddressedFrames) {
    const char* const data19 = "01 02 03  04 05 06 07 08  09 0A 0B 0C 0D  0E 0F 10 11 12 13";
    for (const auto& [type, direction] : {std::pair{"0034", 1}, {"0035", 0}, {"8013", 1}}) {
        SCOPED_TRACE(type);
        const Read r(std::string(type) + " Rx 4711 0006 00F1 0010 0013 " + data19);
        EXPECT_EQ(r.Kind(), KindPriorityFrame);
        EXPECT_EQ(r.Direction(), direction);
        EXPECT_EQ(r.Time(), 4711u);
        std::uint32_t priority = 0, source = 0;
        std::uint8_t destination = 0;
        r.item.GetPriority(priority);
        r.item.GetSource(source);
        r.item.GetDestination(destination);
        EXPECT_EQ(priority, 6u);
        EXPECT_EQ(source, 0xF1u);
        EXPECT_EQ(destination, 0x10);
        Bytes expected;
        for (std::uint8_t i = 1; i <= 19; ++i)
            expected.push_back(i);
        EXPECT_EQ(r.Data(), expected);
    }
    const Read longer("0034 Rx 1 0006 00F1 0010 FFFF " + std::string(data19));
    EXPECT_EQ(longer.Data().size(), 47u);
    EXPECT_EQ(longer.Data()[18], 0x13);
    EXPECT_EQ(longer.Data()[19], 0x00);

    for (const auto& [type, direction] : {std::pair{"0050", 0}, {"0051", 1}}) {
        SCOPED_TRACE(type);
        const Read r(std::string(type) + " Tx 99 1234 ABCD 0013 " + data19);
        EXPECT_EQ(r.Kind(), KindAddressedFrame);
        EXPECT_EQ(r.Direction(), direction);
        std::uint32_t source = 0;
        std::uint8_t destination = 0;
        r.item.GetSource(source);
        r.item.GetDestination(destination);
        EXPECT_EQ(source, 0x34u);
        EXPECT_EQ(destination, 0xCD);
        EXPECT_EQ(r.Data().size(), 17u);
        EXPECT_EQ(r.Data()[16], 17);
    }
}

TEST(ParseLineV701, CanFramesDifferFromTheOlderReaderInDirection) {
    const struct {
        const char* type;
        std::uint8_t extended, direction, olderDirection;
    } rows[] = {{"5000", 0, 1, 1}, {"5800", 1, 1, 0}, {"6000", 0, 0, 1}, {"6800", 1, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read r(std::string(row.type) + "  18FEF100 0000002000 0003  11 22 33 44 55 66 77 88");
        EXPECT_EQ(r.Kind(), KindCanFrame);
        EXPECT_EQ(r.Identifier(), 0x18FEF100u);
        EXPECT_EQ(r.Extended(), row.extended);
        EXPECT_EQ(r.Direction(), row.direction);
        EXPECT_EQ(r.Time(), 2000u);
        EXPECT_EQ(r.Data(), (Bytes{0x11, 0x22, 0x33}));
        CTraceItemI older;
        older.ParseLine((std::string(row.type) + " 00 18FEF100 0000002000 0003 11 22 33").c_str(), 1);
        std::uint8_t olderDirection = 0;
        older.GetDirection(olderDirection);
        EXPECT_EQ(olderDirection, row.olderDirection);
    }
}

TEST(ParseLineV701, TheReadersDifferInTwoEventCodes) {
    const auto code = [](const char* line, bool older) {
        CTraceItemI item;
        older ? item.ParseLine(line, 1) : item.ParseLineV701(line, 1);
        std::uint32_t value = 0;
        item.GetEventCode(value);
        return value;
    };
    EXPECT_EQ(code("800E 00000001", true), 0x20030005u);
    EXPECT_EQ(code("800E", false), 0x20030006u);
    EXPECT_EQ(code("4409 00 x 0000000001", true), 0x20010010u);
    EXPECT_EQ(code("4409 x 1", false), 0x2001000Eu);
}

TEST(ParseLineV701, FlexFramesReadFixedColumns) {
    const Read first(FlexLine("0038", 0x1F, 123456, 3, "0a B1 c2"));
    EXPECT_EQ(first.Kind(), KindFlexFrame);
    EXPECT_TRUE(first.item.IsFlexFrame());
    EXPECT_FALSE(first.item.IsRecognised());
    EXPECT_EQ(first.Identifier(), 0x1Fu);
    EXPECT_EQ(first.Time(), 123456u);
    EXPECT_EQ(first.Direction(), 0);
    EXPECT_EQ(first.Extended(), 0) << "a Flex frame never reports an extended identifier";
    EXPECT_EQ(first.Data(), (Bytes{0x0A, 0xB1, 0xC2}));
    EXPECT_EQ(Read(FlexLine("0039", 0x1F, 1, 1, "FF")).Direction(), 1);

    const Read second(SlotFlexLine("0091", "B", 7, 0x2A, 99, 2, "12 34"));
    EXPECT_EQ(second.Direction(), 1);
    std::uint8_t letter = 0;
    std::uint32_t slot = 0;
    second.item.GetFlexChannel(letter);
    second.item.GetFlexSlot(slot);
    EXPECT_EQ(letter, 'B');
    EXPECT_EQ(slot, 7u);
    EXPECT_EQ(second.Identifier(), 0x2Au);
    EXPECT_EQ(second.Time(), 99u);
    EXPECT_EQ(second.Data(), (Bytes{0x12, 0x34}));
    EXPECT_EQ(Read(SlotFlexLine("0090", "A", 1, 1, 1, 1, "77")).Direction(), 0);

    // Blanks count as 0, other characters as 0xFF per nibble, and so does the end of the line.
    EXPECT_EQ(Read(FlexLine("0038", 1, 1, 6, "0A B     zz eG")).Data(), (Bytes{0x0A, 0xB0, 0x00, 0xFE, 0xDF, 0xFE}));
    Bytes beyond(44, 0xFE);
    beyond[0] = 0x01;
    EXPECT_EQ(Read(FlexLine("0038", 1, 1, 9999, "01")).Data(), beyond);
    EXPECT_EQ(Read("0038").Data(), Bytes{});
}

TEST(ParseLineV701, NibbleTables) {
    for (unsigned c = 0; c < 256; ++c) {
        unsigned expected = 0xFF;
        if (c >= '0' && c <= '9')
            expected = c - '0';
        else if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f')
            expected = (c | 0x20) - 'a' + 10;
        else if (c == ' ')
            expected = 0;
        const auto ch = static_cast<unsigned char>(c);
        ASSERT_EQ(nibble::Value(ch), expected) << c;
        ASSERT_EQ(nibble::Low(ch), expected) << c;
        ASSERT_EQ(nibble::High(ch), expected == 0xFF ? 0xFF : expected << 4) << c;
    }
    EXPECT_EQ(nibble::Byte('f', 'E'), 0xFE);
    EXPECT_EQ(nibble::Byte(0, 0), 0xFE);
    EXPECT_EQ(nibble::Byte('1', 0), 0x0F);
}

TEST(ParseLineV701, PcTimeStampsAndFilterMarks) {
    const char* const marks[] = {
        "[Start Trace Recording]", "[Stop Trace Recording]",           "[Communication started]",
        "[Communication stopped]", "[Trace started by Trigger event]", "[Trace stopped by Trigger event]",
        "[PC Time Stamp]"};
    for (int i = 1; i <= 7; ++i) {
        const Read r("FF0" + std::to_string(i) + " -  - 2024-02-29 23:59:58");
        EXPECT_TRUE(r.item.IsPcTime());
        EXPECT_FALSE(r.item.HasTime());
        EXPECT_EQ(r.Time(), 0u);
        std::string text;
        r.item.GetPcTimeText(text);
        EXPECT_EQ(text, "29/02/2024   23:59:58");
        EXPECT_EQ(r.Text(), marks[i - 1]);
        EXPECT_FALSE(r.item.HasMarkText());
    }
    const Read filter("FF08 -  - 2024-02-29 23:59:58 AVeryLongFilterNameThatDoesNotFit.flt");
    std::string mark;
    filter.item.GetMarkText(mark);
    EXPECT_EQ(mark, "AVeryLongFilterNameThatDoesNotF");
    EXPECT_EQ(filter.Text(), "[CAN Filter changed]");
}

TEST(ParseLineV701, UnknownAndHostileLines) {
    for (const char* line : {"0001 x 5", "0036 x 5", "8012 x 5", "ABCD", "", "   ", "qqqq"}) {
        const Read r(line);
        EXPECT_EQ(r.Text(), "Unknown event") << line;
        EXPECT_EQ(r.Time(), 0u) << line;
        EXPECT_EQ(r.Severity(), 1) << line;
    }
    EXPECT_EQ(Read("FF00 -  - 2024-02-29 23:59:58").Text(), "") << "FF00 has no text";

    std::string garbage;
    for (int i = 0; i < 255; ++i)
        garbage += static_cast<char>(0x80 + (i * 53) % 0x80);
    for (const char* type : {"0034 ", "0050 ", "0038 ", "0091 ", "5000 ", "FF08 ", "0030 ", "400A ", "440D "}) {
        const Read r(type + garbage);
        EXPECT_LE(r.Data().size(), 47u) << type;
    }
    const std::string hugeToken = "0034 " + std::string(400, 'T') + " 1 0 0 0 FFFF 01";
    EXPECT_LE(Read(hugeToken).Data().size(), 47u);
    EXPECT_EQ(Read("0050 x 1 0 0 ffff").Data(), Bytes(17, 0));
}
