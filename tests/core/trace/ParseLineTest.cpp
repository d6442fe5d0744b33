// The reader of format versions up to 601: hexadecimal times, every record timed.

#include "support/RecordProbe.h"
#include "trace/CTraceItemI.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

struct Read : RecordProbe {
    explicit Read(const std::string& line) { EXPECT_EQ(item.ParseLine(line.c_str(), 1), 0); }
};

using Bytes = std::vector<std::uint8_t>;

} // namespace

TEST(ParseLine, EventsWithAHexTime) {
    const struct {
        const char* type;
        std::uint32_t code;
        std::uint8_t severity;
    } rows[] = {
        {"0000", 0x00020001, 1}, {"0005", 0x40020002, 1}, {"0006", 0x40020003, 2}, {"000F", 0x20020009, 1},
        {"0033", 0x40020008, 2}, {"0080", 0x2002000A, 1}, {"00FE", 0x2002000B, 1}, {"00FF", 0x4002000C, 0},
        {"8000", 0x40030001, 0}, {"8001", 0x40030002, 0}, {"8004", 0x00030003, 1}, {"8005", 0x00030004, 1},
        {"800E", 0x20030005, 1}, {"800F", 0x20030006, 1}, {"801E", 0x20030007, 1}, {"801F", 0x20030008, 1},
        {"8020", 0x20030009, 1}, {"8021", 0x0003000A, 1}, {"8025", 0x2003000D, 0}, {"8026", 0x2003000E, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read r(std::string(row.type) + " 0001e2F0");
        EXPECT_EQ(r.Kind(), KindEvent);
        EXPECT_EQ(r.Code(), row.code);
        EXPECT_EQ(r.Severity(), row.severity);
        EXPECT_TRUE(r.item.HasTime());
        EXPECT_EQ(r.Time(), 0x1E2F0u);
        EXPECT_EQ(r.Channel(), 0);
        EXPECT_NE(r.Text(), "Unknown message");
    }
}

TEST(ParseLine, LineBytesTakeTheFirstByteAndTheirDirection) {
    const struct {
        const char* type;
        std::uint8_t direction;
        bool emptyIsBlank;
    } rows[] = {{"0003", 0, false}, {"0004", 1, false}, {"0008", 1, true},
                {"000A", 0, true},  {"8002", 0, false}, {"8003", 1, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read one(std::string(row.type) + " 00000010 0001 41 42");
        EXPECT_EQ(one.Kind(), KindLineByte);
        EXPECT_EQ(one.Direction(), row.direction);
        EXPECT_EQ(one.Time(), 0x10u);
        EXPECT_EQ(one.Data(), Bytes{0x41});
        const Read two(std::string(row.type) + " 00000010 0002 41 42");
        EXPECT_EQ(two.Data(), Bytes{0x41}) << "the length-2 bit does not reach the stored byte";
        const Read none(std::string(row.type) + " 00000010 0000 41 42");
        EXPECT_EQ(none.Data(), Bytes{});
        const std::uint8_t* value = nullptr;
        none.item.GetData(value);
        EXPECT_EQ(*value, row.emptyIsBlank ? 0x20 : 0x41);
    }
}

TEST(ParseLine, LegacyCanFramesCountTheIdentifierInTheirLength) {
    // 0020/0021 carry a skipped word ahead of a two-digit length; 8012/8013 a four-digit length.
    const struct {
        const char* line;
        std::uint8_t direction;
    } rows[] = {
        {"0020 00000100 FFFF 0C 23 01 00 00 11 22 33 44 55 66 77 88", 1},
        {"0021 00000100 0000 0c 23 01 00 00 11 22 33 44 55 66 77 88", 0},
        {"8012 00000100 000C 23 01 00 00 11 22 33 44 55 66 77 88 ", 0},
        {"8013 00000100 000C 23 01 00 00 11 22 33 44 55 66 77 88", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const Read r(row.line);
        EXPECT_EQ(r.Kind(), KindCanFrame);
        EXPECT_EQ(r.Identifier(), 0x123u);
        EXPECT_EQ(r.Extended(), 0);
        EXPECT_EQ(r.Direction(), row.direction);
        EXPECT_EQ(r.Channel(), 0);
        EXPECT_EQ(r.Time(), 0x100u);
        EXPECT_EQ(r.Data(), (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}));
    }
    const Read extended("8012 00000100 0006 FF FF FF 9F AA BB");
    EXPECT_EQ(extended.Extended(), 1);
    EXPECT_EQ(extended.Identifier(), 0x1FFFFFFFu);
    EXPECT_EQ(extended.Data(), (Bytes{0xAA, 0xBB}));

    const auto lengthShown = [](const char* length) {
        return Read(std::string("8013 00000001 ") + length + " 01 02 03 04 11 22 33 44 55 66 77 88").Data().size();
    };
    EXPECT_EQ(lengthShown("0004"), 0u);
    EXPECT_EQ(lengthShown("0005"), 1u);
    EXPECT_EQ(lengthShown("000D"), 8u);
    EXPECT_EQ(lengthShown("0014"), 8u);
    EXPECT_EQ(lengthShown("FFFF"), 8u);

    const Read invalid("0020 00000100 0000 03 23 01 00 00 11 22 33 44 55 66 77 88");
    EXPECT_EQ(invalid.Kind(), KindEvent);
    EXPECT_EQ(invalid.Text(), "Invalid Can Identifier");
    EXPECT_EQ(invalid.Severity(), 0);
    EXPECT_FALSE(invalid.item.HasData());
    EXPECT_EQ(invalid.Time(), 0x100u);
}

TEST(ParseLine, CanStateAndBusLevels) {
    EXPECT_EQ(Read("0022 00000005 0001 02").Text(), "Bus off");
    EXPECT_EQ(Read("0022 00000005 0001 07").Code(), 0x50010007u);
    EXPECT_EQ(Read("0022 00000005 0001 08").Text(), "Unknown CAN error");
    EXPECT_EQ(Read("0022 00000005 0001 08").Time(), 5u);
    EXPECT_EQ(Read("0031 00000001 0001 01").Code(), 0x40020006u);
    EXPECT_EQ(Read("0031 00000001 0001 00").Code(), 0x40020015u);
    EXPECT_EQ(Read("0032 00000001 0001 01").Code(), 0x40020007u);
    const Read level("0032 00000001 0001 02");
    EXPECT_EQ(level.Code(), 0x40020016u);
    EXPECT_EQ(level.Severity(), 0);
}

TEST(ParseLine, BaudRatesAndTheirFormats) {
    const Read kline("0030 00000020 0006 EE 00 4B 00 00 08");
    EXPECT_EQ(kline.Kind(), KindBaudrateFormat);
    EXPECT_EQ(kline.Text(), "Baudrate: 19200 Format 8E1");
    EXPECT_TRUE(kline.item.HasTime());
    EXPECT_EQ(kline.Time(), 0x20u);
    EXPECT_EQ(Read("0030 00000020 0006 00 01 02 03 04 63").Text(), "Baudrate: 67305985 Data Format Unknown");
    EXPECT_EQ(Read("0030 00000020 0006 00 00 00 00 80 00").Text(), "Baudrate: -2147483648 Format 7N1");
    // 8022 shifts the rate by one byte and leaves no room for a format.
    const Read can("8022 00000020 0006 EE 00 00 4B 00 00");
    EXPECT_EQ(can.Code(), 0x50080014u);
    EXPECT_EQ(can.Text(), "Baudrate: 19200 Data Format Unknown");
}

TEST(ParseLine, PriorityFramesAndByteBlocks) {
    for (const auto& [type, direction] : {std::pair{"0034", 1}, {"0035", 0}, {"0036", 1}}) {
        SCOPED_TRACE(type);
        const Read r(std::string(type) + " 00000030 000C 11 22 33 01 02 03  04 05 06 07 08 09");
        EXPECT_EQ(r.Kind(), KindPriorityFrame);
        EXPECT_EQ(r.Direction(), direction);
        std::uint32_t priority = 0, source = 0;
        std::uint8_t destination = 0;
        r.item.GetPriority(priority);
        r.item.GetSource(source);
        r.item.GetDestination(destination);
        EXPECT_EQ(priority, 0x11u);
        EXPECT_EQ(source, 0x22u);
        EXPECT_EQ(destination, 0x33);
        EXPECT_EQ(r.Data(), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}));
        EXPECT_EQ(r.Time(), 0x30u);
    }
    EXPECT_EQ(Read("0034 00000030 0003 11 22 33 01").Data().size(), 0u);
    EXPECT_EQ(Read("0034 00000030 0004 11 22 33 01").Data(), Bytes{1});
    Bytes longFrame(47, 0);
    for (std::uint8_t i = 0; i < 9; ++i)
        longFrame[i] = static_cast<std::uint8_t>(i + 1);
    EXPECT_EQ(Read("0035 00000030 FFFF 11 22 33 01 02 03  04 05 06 07 08 09").Data(), longFrame)
        << "a length beyond the line shows the read bytes, then zeros, up to the room of the record";

    const Read nine("0037 00000040 0009 01 02 03 04 05 06  07 08 09 ");
    EXPECT_EQ(nine.Kind(), KindByteBlock);
    EXPECT_EQ(nine.Direction(), 1);
    EXPECT_EQ(nine.Data(), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    for (const auto& [type, direction] : {std::pair{"8023", 0}, {"8024", 1}}) {
        const Read eight(std::string(type) + " 00000040 0003 a1 B2 c3 04 05 06  07 08");
        EXPECT_EQ(eight.Direction(), direction) << type;
        EXPECT_EQ(eight.Data(), (Bytes{0xA1, 0xB2, 0xC3})) << type;
    }
}

TEST(ParseLine, CardEventsCarryTheirChannelAndADecimalTime) {
    const std::uint32_t codes[] = {0x2001000F, 0xC0010008, 0x2001000A, 0x80010005, 0x80010006,
                                   0x80010007, 0x2001000B, 0x2001000C, 0x2001000D, 0x20010010};
    for (int i = 0; i < 10; ++i) {
        const std::string line = "440" + std::to_string(i) + " 0a x 0000012345";
        SCOPED_TRACE(line);
        const Read r(line);
        EXPECT_EQ(r.Code(), codes[i]);
        EXPECT_EQ(r.Channel(), 10);
        EXPECT_EQ(r.Time(), 12345u);
        EXPECT_EQ(r.Severity(), 1);
        EXPECT_EQ(r.item.HasChannel(), (codes[i] & 0x80000000u) != 0);
    }
}

TEST(ParseLine, ChannelCanFrames) {
    const struct {
        const char* type;
        std::uint8_t extended, direction;
    } rows[] = {{"5000", 0, 1}, {"6000", 0, 1}, {"5800", 1, 0}, {"6800", 1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const Read r(std::string(row.type) + " 02 18FEF100 0000001000 0003 11 22 33 44 55 66 77 88");
        EXPECT_EQ(r.Kind(), KindCanFrame);
        EXPECT_EQ(r.Channel(), 2);
        EXPECT_EQ(r.Identifier(), 0x18FEF100u);
        EXPECT_EQ(r.Extended(), row.extended);
        EXPECT_EQ(r.Direction(), row.direction);
        EXPECT_EQ(r.Time(), 1000u);
        EXPECT_EQ(r.Data(), (Bytes{0x11, 0x22, 0x33}));
    }
    Bytes capped(45, 0);
    capped[0] = 0x11;
    EXPECT_EQ(Read("5000 02 00000001 0000001000 FFFF 11").Data(), capped);
}

TEST(ParseLine, MarksPcTimeAndFilterChanges) {
    const std::uint32_t codes[] = {0x50080915, 0x50080916, 0x50080815, 0x50080715, 0x50080716, 0x50080615, 0x50080515};
    for (int i = 0; i < 7; ++i) {
        const Read r("FF0" + std::to_string(i) + " 0000FFFF whatever follows");
        EXPECT_EQ(r.Code(), codes[i]);
        EXPECT_EQ(r.Severity(), 2);
        EXPECT_EQ(r.Time(), 0u);
    }
    EXPECT_EQ(Read("FF01 0000FFFF").Text(), "[Start Trace Recording]");

    const Read stamp("FF07    05.04.2023 12:34:56");
    EXPECT_TRUE(stamp.item.IsPcTime());
    EXPECT_FALSE(stamp.item.HasTime());
    std::string text;
    stamp.item.GetPcTimeText(text);
    EXPECT_EQ(text, "05/04/2023   12:34:56");
    EXPECT_EQ(stamp.Text(), "[PC Time Stamp]");

    const Read filter("FF08 [  ] 2023-04-05 12:34:56 C:\\Filters\\Engine.flt trailing");
    filter.item.GetPcTimeText(text);
    EXPECT_EQ(text, "05/04/2023   12:34:56");
    std::string mark;
    filter.item.GetMarkText(mark);
    EXPECT_EQ(mark, "C:\\Filters\\Engine.flt");
    EXPECT_EQ(filter.Text(), "[CAN Filter changed]");
}

TEST(ParseLine, UnknownAndHostileLinesBecomeTimedRecordsWithoutOverreading) {
    for (const char* line : {"1234 00001000", "0001", "4410 01 x 1", "FFFE", "    ", "zzzz"}) {
        const Read r(line);
        EXPECT_EQ(r.Text(), std::string(line).rfind("FF", 0) == 0 ? "" : "Unknown event") << line;
        EXPECT_EQ(r.Time(), 0u) << line;
        EXPECT_TRUE(r.item.HasTime()) << line;
    }
    // Short lines: every field reads as empty, and the record still stands with time 0.
    for (const char* line : {"", "0", "0000", "0020", "0034 ", "5000 x", "0030 ", "4400"}) {
        SCOPED_TRACE(line);
        const Read r(line);
        EXPECT_EQ(r.Time(), 0u);
        EXPECT_TRUE(r.item.HasTime());
    }
    for (const char* line : {"FF07", "FF08"}) {
        const Read r(line);
        std::string text, mark = "none";
        r.item.GetPcTimeText(text);
        r.item.GetMarkText(mark);
        EXPECT_EQ(text, "00/00/0000   00:00:00") << line;
        EXPECT_EQ(mark, "") << line;
    }
    EXPECT_EQ(Read("").Text(), "Unknown event");
    EXPECT_EQ(Read("0000").Text(), "Invalid bytes");
    EXPECT_EQ(Read("0020").Text(), "Invalid Can Identifier");

    std::string garbage;
    for (int i = 0; i < 255; ++i)
        garbage += static_cast<char>(0x80 + (i * 37) % 0x80);
    for (const char* type : {"0020 ", "0034 ", "0037 ", "5000 ", "4400 ", "FF08 ", "FF07 ", ""}) {
        const Read r(type + garbage);
        EXPECT_LE(r.Data().size(), 50u);
    }
    const std::string veryLong = "0005 " + std::string(2000, '7');
    EXPECT_EQ(Read(veryLong).Time(), 0x77777777u);
}
