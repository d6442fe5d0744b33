#include "trace/CTraceItemI.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// Heap copies of exactly the given size, so that ASan reports any read past them.
std::unique_ptr<std::uint8_t[]> ExactBytes(std::size_t count, std::uint8_t first = 1) {
    auto bytes = std::make_unique<std::uint8_t[]>(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(first + i);
    return bytes;
}

std::vector<std::uint8_t> DataOf(const CTraceItemI& item) {
    std::uint8_t length = 0;
    const std::uint8_t* data = nullptr;
    item.GetDataLength(length);
    item.GetData(data);
    return data == nullptr ? std::vector<std::uint8_t>{} : std::vector<std::uint8_t>(data, data + length);
}

std::string EventText(const CTraceItemI& item, std::string before = "") {
    item.GetEventText(before);
    return before;
}

} // namespace

TEST(TraceItem, NewRecordIsKindNoneWithSeverityOneAndNoDirection) {
    const CTraceItemI item;
    std::uint8_t kind = 99, severity = 0, channel = 9;
    std::uint32_t time = 7, code = 7;
    EXPECT_EQ(item.GetKind(kind), 0);
    EXPECT_EQ(kind, KindNone);
    EXPECT_FALSE(item.IsRecognised());
    EXPECT_TRUE(item.HasSeverity());
    item.GetSeverity(severity);
    EXPECT_EQ(severity, 1);
    EXPECT_FALSE(item.HasDirection());
    EXPECT_FALSE(item.HasData());
    EXPECT_FALSE(item.HasMarkText());
    EXPECT_TRUE(item.HasTime());
    item.GetChannel(channel);
    item.GetTime(time);
    item.GetEventCode(code);
    EXPECT_EQ(channel, 0);
    EXPECT_EQ(time, 0u);
    EXPECT_EQ(code, 0u);
}

TEST(TraceItem, ChannelOfAnEventIsDecidedByTheTopBitOfItsCode) {
    CTraceItemI item;
    item.SetEvent(0x50010001, 3, 0, 10, 1);
    EXPECT_FALSE(item.HasChannel());
    item.SetEvent(0x80010005, 3, 0, 10, 1);
    EXPECT_TRUE(item.HasChannel());
    std::uint8_t channel = 0;
    item.GetChannel(channel);
    EXPECT_EQ(channel, 3);
    item.SetCanFrame(0, 0, 0, 0x123, 0, 0, 0, nullptr);
    EXPECT_TRUE(item.HasChannel());
    item.SetLineByte(0, 0, 0, 1, 0x41);
    EXPECT_FALSE(item.HasChannel());
}

TEST(TraceItem, TimeValidityFollowsTheKind) {
    CTraceItemI item;
    item.SetEventUntimed(0x2002000A, 1);
    EXPECT_FALSE(item.HasTime());
    item.SetTime(55);
    EXPECT_TRUE(item.HasTime());
    item.SetEvent(0x2002000A, 0, 0, 66, 1);
    EXPECT_TRUE(item.HasTime());
    item.SetBaudrate(0, 9600);
    EXPECT_FALSE(item.HasTime());
    item.SetBaudrateTimed(77, 9600, 1);
    EXPECT_TRUE(item.HasTime());
    item.SetBaudrateFormatUntimed(0, 9600);
    EXPECT_FALSE(item.HasTime());
    item.SetBaudrateFormat(0, 9600, 88);
    EXPECT_TRUE(item.HasTime());
    std::uint32_t time = 0, raw = 0;
    item.GetTime(time);
    item.GetRawTime(raw);
    EXPECT_EQ(time, 88u);
    EXPECT_EQ(raw, 88u);
    item.SetPcTime(2023, 4, 5, 6, 7, 8);
    item.SetTime(99);
    EXPECT_FALSE(item.HasTime()); // a PC time stamp never shows a record time
    item.SetByteBlock(0, 0, 0, 0, nullptr);
    EXPECT_TRUE(item.HasTime());
}

TEST(TraceItem, GettersLeaveTheOutParameterAloneOnKindsTheyDoNotServe) {
    CTraceItemI item;
    item.SetEvent(0x2002000A, 0, 0, 1, 2);
    std::uint32_t identifier = 7, priority = 7, source = 7, slot = 7;
    std::uint8_t direction = 7, destination = 7, length = 7, letter = 7, extended = 7;
    const std::uint8_t* data = nullptr;
    std::string pcTime = "kept";
    item.GetIdentifier(identifier);
    item.GetPriority(priority);
    item.GetSource(source);
    item.GetFlexSlot(slot);
    item.GetDirection(direction);
    item.GetDestination(destination);
    item.GetDataLength(length);
    item.GetFlexChannel(letter);
    item.GetData(data);
    item.GetPcTimeText(pcTime);
    item.GetExtendedFlag(extended);
    EXPECT_EQ(identifier + priority + source + slot, 28u);
    EXPECT_EQ(direction + destination + length + letter, 28);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(pcTime, "kept");
    EXPECT_EQ(extended, 0) << "the extended flag is 0 on every kind but CAN frames";

    std::uint8_t severity = 9;
    item.SetPcTime(2023, 1, 2, 3, 4, 5);
    EXPECT_TRUE(item.HasSeverity());
    item.GetSeverity(severity);
    EXPECT_EQ(severity, 9);
    item.SetByteBlock(0, 0, 0, 0, nullptr);
    EXPECT_FALSE(item.HasSeverity());
}

TEST(TraceItem, FramesKeepTheirFieldsAndCapTheirData) {
    CTraceItemI item;
    auto bytes = ExactBytes(255);
    struct Case {
        const char* name;
        std::uint8_t kind;
        std::size_t capacity;
    };
    for (const Case& c :
         {Case{"can", KindCanFrame, 45}, Case{"priority", KindPriorityFrame, 47}, Case{"block", KindByteBlock, 50}}) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CTraceItemI::DataCapacity(c.kind), c.capacity);
        for (std::uint8_t length :
             {std::uint8_t{0}, std::uint8_t{3}, static_cast<std::uint8_t>(c.capacity), std::uint8_t{255}}) {
            auto source = ExactBytes(length);
            if (c.kind == KindCanFrame)
                item.SetCanFrame(2, 0, 100, 0x1FFFFFFF, 1, 1, length, source.get());
            else if (c.kind == KindPriorityFrame)
                item.SetPriorityFrame(0, 100, 0xA1, 0xB2, 0xC3, 1, length, source.get());
            else
                item.SetByteBlock(0, 100, 1, length, source.get());
            const std::size_t stored = std::min<std::size_t>(length, c.capacity);
            EXPECT_EQ(DataOf(item), std::vector<std::uint8_t>(source.get(), source.get() + stored));
        }
        std::uint8_t direction = 0;
        item.GetDirection(direction);
        EXPECT_EQ(direction, 1);
    }

    item.SetCanFrame(2, 0, 100, 0x1FFFFFFF, 1, 0, 8, bytes.get());
    std::uint32_t identifier = 0;
    std::uint8_t extended = 0;
    item.GetIdentifier(identifier);
    item.GetExtendedFlag(extended);
    EXPECT_EQ(identifier, 0x1FFFFFFFu);
    EXPECT_EQ(extended, 1);

    item.SetPriorityFrame(0, 100, 0xA1, 0xB2, 0xC3, 0, 1, bytes.get());
    std::uint32_t priority = 0, source = 0;
    std::uint8_t destination = 0;
    item.GetPriority(priority);
    item.GetSource(source);
    item.GetDestination(destination);
    EXPECT_EQ(priority, 0xA1u);
    EXPECT_EQ(source, 0xB2u);
    EXPECT_EQ(destination, 0xC3);
}

TEST(TraceItem, AddressedFrameTakesSeventeenBytesWhateverItsLength) {
    CTraceItemI item;
    auto bytes = ExactBytes(17, 0x40);
    item.SetAddressedFrame(0, 5, 0x12345678, 0x9ABCDEF0, 1, 3, bytes.get());
    EXPECT_EQ(DataOf(item), std::vector<std::uint8_t>({0x40, 0x41, 0x42}));
    const std::uint8_t* data = nullptr;
    item.GetData(data);
    EXPECT_EQ(std::memcmp(data, bytes.get(), 17), 0);
    std::uint32_t source = 0;
    std::uint8_t destination = 0;
    item.GetSource(source);
    item.GetDestination(destination);
    EXPECT_EQ(source, 0x12345678u);
    EXPECT_EQ(destination, 0xF0);
    item.SetAddressedFrame(0, 5, 1, 2, 1, 200, bytes.get());
    EXPECT_EQ(DataOf(item).size(), 17u);
}

TEST(TraceItem, LineByteShowsOneValueByteWhateverItsLengthField) {
    CTraceItemI item;
    for (auto [field, shown] : {std::pair{0, 0}, {1, 1}, {2, 1}, {255, 1}}) {
        item.SetLineByte(0, 9, 1, static_cast<std::uint8_t>(field), 0x1AB);
        std::uint8_t length = 99;
        item.GetDataLength(length);
        EXPECT_EQ(length, shown) << "length field " << field;
    }
    const std::uint8_t* value = nullptr;
    item.GetData(value);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(*value, 0xAB);
    EXPECT_TRUE(item.IsLineByte());
}

TEST(TraceItem, SettersClearWhatTheKindBeforeLeftInThePayload) {
    CTraceItemI item;
    auto bytes = ExactBytes(50, 0x80);
    item.SetByteBlock(0, 1, 0, 50, bytes.get());
    EXPECT_TRUE(item.HasMarkText()) << "byte 20 is tested whatever the kind";
    std::string mark;
    item.GetMarkText(mark);
    EXPECT_EQ(mark.size(), 32u) << "a mark without terminator ends with the payload";
    item.SetEvent(0x2002000A, 0, 0, 1, 1);
    EXPECT_FALSE(item.HasMarkText());
    item.GetMarkText(mark);
    EXPECT_EQ(mark, "");
}

TEST(TraceItem, PcTimeAndMarkRecords) {
    CTraceItemI item;
    item.SetMarkRecord(2023, 4, 5, 6, 7, 8, "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
    EXPECT_TRUE(item.IsPcTime());
    EXPECT_TRUE(item.IsEvent());
    std::string text, mark;
    item.GetPcTimeText(text);
    EXPECT_EQ(text, "05/04/2023   06:07:08");
    EXPECT_TRUE(item.HasMarkText());
    item.GetMarkText(mark);
    EXPECT_EQ(mark, "ABCDEFGHIJKLMNOPQRSTUVWXYZ01234");
    item.SetPcTime(99, 1, 2, 3, 4, 5);
    EXPECT_FALSE(item.HasMarkText());
    item.GetPcTimeText(text);
    EXPECT_EQ(text, "02/01/0099   03:04:05");
}

TEST(TraceItem, CanStatesMapToTheirEvents) {
    CTraceItemI item;
    for (std::uint32_t state = 0; state <= 9; ++state) {
        item.SetCanState(state, 1000 + state);
        std::uint32_t code = 0, time = 0;
        std::uint8_t severity = 0;
        item.GetEventCode(code);
        item.GetTime(time);
        item.GetSeverity(severity);
        EXPECT_EQ(code, state >= 1 && state <= 7 ? 0x50010000u + state : 0x50010008u);
        EXPECT_EQ(time, 1000 + state);
        EXPECT_EQ(severity, 1);
    }
}

TEST(TraceItemText, EveryEventCodeHasItsText) {
    const struct {
        std::uint32_t code;
        const char* text;
    } messages[] = {
        // clang-format off
        {0x00010001, "Start communication"}, {0x00010002, "Stop communication"}, {0x00010003, "Start trace"},
        {0x00010004, "Stop trace"}, {0x00020001, "Invalid bytes"}, {0x00020004, "KLine response received"},
        {0x00020005, "KLine request send"}, {0x00030003, "KLine byte flush"}, {0x00030004, "KLine byte flush later"},
        {0x0003000A, "GPD insert"}, {0x2001000A, "Hardware communication timeout"},
        {0x2001000B, "Receive FIFO overflow"}, {0x2001000C, "Error additional"},
        {0x2001000D, "Transmit FIFO overflow"}, {0x2001000E, "No card interrupt possible"},
        {0x2001000F, "Unknown error in CAN communication!"}, {0x20010010, "Error transmit FIFO"},
        {0x20010011, "Warning 96"}, {0x20010012, "FIFO overflow"}, {0x20010013, "Invalid item"},
        {0x20020009, "Undefined event"}, {0x2002000A, "Timer overrun"}, {0x2002000B, "Trace overrun"},
        {0x20020015, "Trace FIFO overrun"}, {0x20020016, "Trace error unknown"},
        {0x20020017, "sync pattern received"}, {0x20020018, "Error KLine wrong parity"},
        {0x20020019, "Error KLine wrong byteformat / stopbit error"}, {0x2002001A, "Error KLine overrun on receive"},
        {0x20030005, "KLine timer overflow"}, {0x20030006, "KLine buffer Overflow"},
        {0x20030007, "CAN timer overflow"}, {0x20030008, "CAN buffer overflow"}, {0x20030009, "Unknown error"},
        {0x2003000D, "J2190 Timer overflow"}, {0x2003000E, "J2190 buffer overflow"}, {0x20040010, "Unknown event"},
        {0x40020002, "Received corrupted byte"}, {0x40020003, "Syncpattern (55H) received"},
        {0x40020006, "Start dominant bus level"}, {0x40020007, "Start recessive bus level"},
        {0x40020008, "Start of 5 baud initialization"}, {0x4002000C, "Init address found"},
        {0x40020015, "Dominant bus level"}, {0x40030001, "Dominant bus level"}, {0x40020016, "Recessive bus level"},
        {0x40030002, "Recessive bus level"}, {0x50010001, "Error passive"}, {0x50010002, "Bus off"},
        {0x50010003, "Fifo overflow"}, {0x50010004, "Error card"}, {0x50010005, "Error active"},
        {0x50010006, "Warning 96"}, {0x50010007, "Error frame"}, {0x50010008, "Unknown CAN error"},
        {0x50080016, "Invalid Can Identifier"}, {0x6003000B, "J2190 send"}, {0x6003000C, "J2190 received"},
        {0x80010005, "Bus off       (bus state changed)"}, {0x80010006, "Error active  (bus state changed)"},
        {0x80010007, "Error passive (bus state changed)"}, {0x80010015, "FLEX STATE CHANGE TO STOPPRD"},
        {0x80010016, "FLEX STATE CHANGE TO STARTUP"}, {0x80010017, "FLEX STATE CHANGE TO ACTIVE"},
        {0x80010018, "FLEX STATE CHANGE TO PASSIVE"}, {0x80010019, "FLEX STATE UNKNOWN"},
        {0xC0010008, "Error frame detected"}, {0xC0010009, "Remote frame detected"}, {0x20040001, "Unknown message"},
        {0x12345678, "Unknown message"}, {0x50080005, "Unknown message"}
        // clang-format on
    };
    CTraceItemI item;
    for (const auto& m : messages) {
        item.SetEvent(m.code, 0, 0, 0, 1);
        EXPECT_EQ(EventText(item), m.text) << std::hex << m.code;
    }
}

TEST(TraceItemText, BaudFormatsGiveTheirCodesAndTexts) {
    const struct {
        std::uint32_t code;
        const char* text;
    } texts[] = {
        // clang-format off
        {0x50080001, "Baudrate: %s Format 7N1"}, {0x5008000C, "Baudrate: %s Format 8O2"},
        {0x50080002, "Baudrate: %s Format 7O1"}, {0x5008000D, "Baudrate: %s Format 8E2"},
        {0x50080003, "Baudrate: %s Format 7E1"}, {0x5008000E, "Baudrate: %s Format 9N1"},
        {0x50080004, "Baudrate: %s Format 7N2"}, {0x5008000F, "Baudrate: %s Format 9O1"},
        {0x50080006, "Baudrate: %s Format 7O2"}, {0x50080010, "Baudrate: %s Format 9E1"},
        {0x50080007, "Baudrate: %s Format 7E2"}, {0x50080011, "Baudrate: %s Format 9N2"},
        {0x50080008, "Baudrate: %s Format 8N1"}, {0x50080012, "Baudrate: %s Format 902"},
        {0x50080009, "Baudrate: %s Format 8O1"}, {0x50080013, "Baudrate: %s Format 9E2"},
        {0x5008000A, "Baudrate: %s Format 8E1"}, {0x50080014, "Baudrate: %s Data Format Unknown"},
        {0x5008000B, "Baudrate: %s Format 8N2"}
        // clang-format on
    };
    const std::uint32_t formatCodes[] = {0x50080001, 0x50080002, 0x50080003, 0x50080004, 0x50080006, 0x50080007,
                                         0x50080008, 0x50080009, 0x5008000A, 0x5008000B, 0x5008000C, 0x5008000D,
                                         0x5008000E, 0x5008000F, 0x50080010, 0x50080011, 0x50080012, 0x50080013};
    const auto textOf = [&](std::uint32_t code) {
        for (const auto& t : texts)
            if (t.code == code) {
                std::string text = t.text;
                return text.replace(text.find("%s"), 2, "19200");
            }
        return std::string("no text");
    };
    CTraceItemI item;
    for (std::uint32_t format = 0; format <= 20; ++format) {
        const std::uint32_t expected = format < 18 ? formatCodes[format] : 0x50080014;
        item.SetBaudrateFormat(format, 19200, 5);
        std::uint32_t code = 0;
        item.GetEventCode(code);
        EXPECT_EQ(code, expected) << "format " << format;
        EXPECT_EQ(EventText(item), textOf(expected)) << "format " << format;
    }
    item.SetBaudrateFormatUntimed(0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(EventText(item), "Baudrate: -1 Data Format Unknown");
}

TEST(TraceItemText, BaudrateRecordsShowTheirBaudWordAsSignedDecimal) {
    CTraceItemI item;
    item.SetBaudrate(0, 500000);
    EXPECT_EQ(EventText(item), "Baudrate: 500000");
    item.SetBaudrateTimed(1, 0x00020001, 7); // a baud that looks like an event code still reads as a baud
    EXPECT_EQ(EventText(item), "Baudrate: 131073");
    std::uint32_t code = 0;
    item.GetEventCode(code);
    EXPECT_EQ(code, 0x00020001u);
    item.SetBaudrate(0, 0x80000000u);
    EXPECT_EQ(EventText(item), "Baudrate: -2147483648");
}

TEST(TraceItemText, MarkTypesNameTheirRecordWhateverTheCode) {
    const char* const marks[] = {"[Start Trace Recording]",
                                 "[Stop Trace Recording]",
                                 "[Communication started]",
                                 "[Communication stopped]",
                                 "[Trace started by Trigger event]",
                                 "[Trace stopped by Trigger event]",
                                 "[PC Time Stamp]",
                                 "[CAN Filter changed]"};
    CTraceItemI item;
    for (int i = 0; i < 8; ++i) {
        const std::string line = "FF0" + std::to_string(i + 1);
        item.ParseLine(line.c_str(), 1);
        EXPECT_EQ(EventText(item), marks[i]) << line;
        item.ParseLineV701(line.c_str(), 1);
        EXPECT_EQ(EventText(item), marks[i]) << line;
    }
    for (const char* line : {"FF00", "FF09", "FFFF", "ff42"}) {
        item.ParseLine(line, 1);
        EXPECT_EQ(EventText(item, "as it was"), "as it was") << line;
    }
}
