#include "ClassicTraceGenerator.h"
#include "classic/FltFile.h"
#include "trace/CTraceFile.h"
#include "trace/CTraceItemI.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

using namespace zdtgen;

namespace {

unsigned TypeOf(const std::string& line) {
    return static_cast<unsigned>(std::strtoul(line.substr(0, 4).c_str(), nullptr, 16));
}

std::set<unsigned> TypesOf(const std::vector<std::string>& lines) {
    std::set<unsigned> types;
    for (const auto& line : lines)
        types.insert(TypeOf(line));
    return types;
}

std::vector<std::string> SplitCrLf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
        lines.push_back(text.substr(start, end - start));
    if (start < text.size())
        lines.push_back(text.substr(start));
    return lines;
}

// A record line starts with a blank or a hex digit of value 0, 4 to 7, 8 or 15.
bool IsRecordLine(const std::string& line) {
    if (line.empty())
        return false;
    const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(line[0])));
    return std::strchr(" 045678F", c) != nullptr;
}

// The record lines behind [TraceData], leaving out a history section.
std::vector<std::string> RecordLines(const std::string& trace) {
    std::vector<std::string> records;
    bool inData = false, inHistory = false;
    for (const auto& line : SplitCrLf(trace)) {
        if (line.rfind("[TraceData]", 0) == 0) {
            inData = true;
        } else if (line.rfind("[AnalyzerHistory]", 0) == 0) {
            inHistory = true;
        } else if (inHistory) {
            inHistory = !line.empty();
        } else if (inData && IsRecordLine(line)) {
            records.push_back(line);
        }
    }
    return records;
}

std::vector<std::string> LinesOfType(const std::vector<std::string>& lines, unsigned type) {
    std::vector<std::string> found;
    for (const auto& line : lines)
        if (TypeOf(line) == type)
            found.push_back(line);
    return found;
}

bool DigitAt(const std::string& line, std::size_t column) {
    return column < line.size() && std::isdigit(static_cast<unsigned char>(line[column]));
}

} // namespace

TEST(ClassicTraceGenerator, SameSeedSameBytesOtherSeedOtherBytes) {
    ClassicTraceOptions options;
    options.records = 500;
    options.hostile = HostileExtras::AllKinds();
    options.hostile.every = 7;
    options.seed = 42;
    const std::string first = MakeClassicTrace(options);
    EXPECT_EQ(first, MakeClassicTrace(options));
    options.seed = 43;
    EXPECT_NE(first, MakeClassicTrace(options));

    EXPECT_EQ(LegacyRecordLines(5), LegacyRecordLines(5));
    EXPECT_NE(LegacyRecordLines(5), LegacyRecordLines(6));
    EXPECT_EQ(V701RecordLines(5), V701RecordLines(5));
    EXPECT_NE(V701RecordLines(5), V701RecordLines(6));
}

TEST(ClassicTraceGenerator, TypeListsHoldEveryTypeCodeOfEachReader) {
    std::set<unsigned> legacy = {0x0000, 0x0003, 0x0004, 0x0005, 0x0006, 0x0008, 0x000A, 0x000F, 0x0020, 0x0021,
                                 0x8012, 0x8013, 0x0022, 0x0030, 0x8022, 0x0080, 0x00FE, 0x00FF, 0x5000, 0x5800,
                                 0x6000, 0x6800, 0x800E, 0x800F, 0x801E, 0x801F, 0x8020, 0x8021};
    for (unsigned t = 0x0031; t <= 0x0037; ++t)
        legacy.insert(t);
    for (unsigned t = 0x4400; t <= 0x4409; ++t)
        legacy.insert(t);
    for (unsigned t = 0x8000; t <= 0x8005; ++t)
        legacy.insert(t);
    for (unsigned t = 0x8023; t <= 0x8026; ++t)
        legacy.insert(t);
    for (unsigned t = 0xFF00; t <= 0xFF08; ++t)
        legacy.insert(t);
    const std::set<unsigned> legacyFound = TypesOf(LegacyRecordLines(1));
    for (unsigned t : legacy)
        EXPECT_TRUE(legacyFound.count(t)) << std::hex << t;
    EXPECT_EQ(legacyFound.size(), legacy.size() + 3) << "three unknown types besides the table";

    std::set<unsigned> v701 = {0x0000, 0x0003, 0x0004, 0x0005, 0x0006, 0x0008, 0x000A, 0x000F, 0x0030, 0x0031, 0x0032,
                               0x0033, 0x0034, 0x0035, 0x8013, 0x0038, 0x0039, 0x0040, 0x0041, 0x0050, 0x0051, 0x0080,
                               0x0090, 0x0091, 0x00FC, 0x00FD, 0x00FE, 0x00FF, 0x0400, 0x400A, 0x440B, 0x440C, 0x440D,
                               0x5000, 0x5800, 0x6000, 0x6800, 0x8004, 0x8005, 0x800E, 0x8020, 0x8021};
    for (unsigned t = 0x000B; t <= 0x000E; ++t)
        v701.insert(t);
    for (unsigned t = 0x4400; t <= 0x4409; ++t)
        v701.insert(t);
    for (unsigned t = 0x5701; t <= 0x5705; ++t)
        v701.insert(t);
    for (unsigned t = 0xFF01; t <= 0xFF08; ++t)
        v701.insert(t);
    const std::set<unsigned> v701Found = TypesOf(V701RecordLines(1));
    for (unsigned t : v701)
        EXPECT_TRUE(v701Found.count(t)) << std::hex << t;
    EXPECT_EQ(v701Found.size(), v701.size() + 2) << "two unknown types besides the table";
}

TEST(ClassicTraceGenerator, AllMixStreamCoversTheTypeListOfItsReader) {
    for (const char* schema : {"601", "701"}) {
        ClassicTraceOptions options;
        options.schema = schema;
        options.records = 200;
        const auto streamed = TypesOf(RecordLines(MakeClassicTrace(options)));
        const auto listed = TypesOf(std::string(schema) == "701" ? V701RecordLines(1) : LegacyRecordLines(1));
        const std::set<unsigned> unknown = {0x0099, 0x7ABC, 0xF123}; // one template, a type per variant
        for (unsigned t : listed) {
            if (!unknown.count(t)) {
                EXPECT_TRUE(streamed.count(t)) << schema << " " << std::hex << t;
            }
        }
        EXPECT_TRUE(std::any_of(unknown.begin(), unknown.end(), [&](unsigned t) { return streamed.count(t) != 0; }));
    }
}

TEST(ClassicTraceGenerator, LegacyLinesCarryTheAskedVariety) {
    const auto lines = LegacyRecordLines(9);
    std::set<unsigned> canLengths;
    bool extended = false, standard = false;
    for (unsigned type : {0x0020u, 0x0021u})
        for (const auto& line : LinesOfType(lines, type)) {
            unsigned time, word, length, id[4];
            ASSERT_EQ(std::sscanf(line.c_str() + 5, "%08x %04x %02x %02x %02x %02x %02x", &time, &word, &length, &id[0],
                                  &id[1], &id[2], &id[3]),
                      7);
            canLengths.insert(length);
            (id[3] & 0x80 ? extended : standard) = true;
        }
    for (unsigned length : {3u, 4u, 8u, 13u, 20u})
        EXPECT_TRUE(canLengths.count(length)) << length;
    EXPECT_TRUE(extended && standard);

    std::set<std::string> channels;
    for (const auto& line : lines)
        if ((TypeOf(line) & 0xFF00) == 0x4400 || (TypeOf(line) & 0xF0FF) == 0x5000 || (TypeOf(line) & 0xF0FF) == 0x6000)
            channels.insert(line.substr(5, 2));
    EXPECT_TRUE(channels.count("0a") && channels.count("0B")) << "both letter cases of channel tokens";

    // Decimal times of 10 digits; the absolute clock jumps by more than 10 ms somewhere.
    std::vector<long> times;
    for (const auto& line : lines)
        if ((TypeOf(line) & 0xFF00) == 0x4400 || (TypeOf(line) & 0xF0FF) == 0x5000 ||
            (TypeOf(line) & 0xF0FF) == 0x6000) {
            const std::size_t at = (TypeOf(line) & 0xFF00) == 0x4400 ? 10 : 17;
            ASSERT_TRUE(DigitAt(line, at) && DigitAt(line, at + 9) && !DigitAt(line, at + 10)) << line;
            times.push_back(std::atol(line.c_str() + at));
        }
    ASSERT_GT(times.size(), 2u);
    bool bigGap = false;
    for (std::size_t i = 1; i < times.size(); ++i) {
        EXPECT_GE(times[i], times[i - 1]);
        bigGap = bigGap || times[i] - times[i - 1] > 10000;
    }
    EXPECT_TRUE(bigGap);
}

TEST(ClassicTraceGenerator, V701LinesCarryEveryTimeForm) {
    const auto lines = V701RecordLines(4);

    // Column-time rows: one form reaches column 23, the other stops short of it.
    for (unsigned type : {0x0005u, 0x0006u, 0x0008u, 0x000Au, 0x000Bu, 0x0031u, 0x0040u, 0x440Bu}) {
        const auto rows = LinesOfType(lines, type);
        ASSERT_EQ(rows.size(), 2u) << std::hex << type;
        EXPECT_TRUE(DigitAt(rows[0], 23) && std::atol(rows[0].c_str() + 14) > 0) << rows[0];
        EXPECT_FALSE(DigitAt(rows[1], 23)) << rows[1];
        EXPECT_GT(std::atol(rows[1].c_str() + 14), 0) << rows[1];
    }

    // Dash form, both ways: a time read by "%1s %d", or "-" as the second token.
    for (unsigned type : {0x0000u, 0x0400u, 0x4400u, 0x4409u, 0x5702u, 0x00FFu, 0x0030u, 0x400Au}) {
        bool dash = false, timed = false;
        for (const auto& line : LinesOfType(lines, type)) {
            char first[300], second[300];
            int time = 0;
            if (line.size() == 4)
                continue;
            ASSERT_EQ(std::sscanf(line.c_str() + 5, "%1s %1s", first, second), 2) << line;
            if (std::strcmp(second, "-") == 0)
                dash = true;
            else
                timed = std::sscanf(line.c_str() + 5, "%1s %d", first, &time) == 2 && time > 0;
        }
        EXPECT_TRUE(dash && timed) << std::hex << type;
    }
    EXPECT_TRUE(std::count(lines.begin(), lines.end(), std::string("00FF"))) << "a four-character FF line";
}

TEST(ClassicTraceGenerator, RecordCountIsExactWhateverElseTheFileHolds) {
    ClassicTraceOptions options;
    options.records = 777;
    options.mix = RecordMix::Can;
    options.hostile = HostileExtras::AllKinds();
    options.hostile.every = 5;
    options.historyPlacement = HistoryPlacement::InTraceData;
    options.history = {{"C:\\f\\Stop.flt", '1'}};
    for (const char* schema : {"601", "701"}) {
        options.schema = schema;
        std::ostringstream out;
        const ClassicTraceSummary summary = WriteClassicTraceWithSummary(out, options);
        const std::string text = out.str();
        EXPECT_EQ(summary.records, 777u);
        EXPECT_EQ(RecordLines(text).size(), 777u) << schema;
        EXPECT_EQ(summary.bytes, text.size());
        EXPECT_EQ(
            text.compare(summary.lastRecordOffset, summary.lastRecordLine.size() + 2, summary.lastRecordLine + "\r\n"),
            0);
        EXPECT_EQ(RecordLines(text).back(), summary.lastRecordLine);

        std::size_t longLines = 0, emptyLines = 0, garbage = 0;
        for (const auto& line : SplitCrLf(text)) {
            longLines += line.size() == 300;
            emptyLines += line.empty();
            garbage += !line.empty() && static_cast<unsigned char>(line[0]) >= 0x80;
            EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos);
        }
        EXPECT_GT(longLines, 10u);
        EXPECT_GT(garbage, 10u);
        EXPECT_GT(emptyLines, 10u);
        EXPECT_NE(text.find("\r\n1"), std::string::npos);
        EXPECT_NE(text.find("\r\n[Comment]"), std::string::npos);
        EXPECT_NE(text.find(std::string(schema) == "701" ? " 9999 " : " FFFF "), std::string::npos);
    }
}

TEST(ClassicTraceGenerator, ByteTargetIsReachedWithinOneLine) {
    ClassicTraceOptions options;
    options.mix = RecordMix::Traffic;
    options.targetBytes = 3'000'000;
    std::ostringstream out;
    const ClassicTraceSummary summary = WriteClassicTraceWithSummary(out, options);
    EXPECT_GE(out.str().size(), options.targetBytes);
    EXPECT_LT(out.str().size(), options.targetBytes + 100);
    EXPECT_EQ(summary.bytes, out.str().size());
    const double perLine = static_cast<double>(summary.bytes) / static_cast<double>(summary.records);
    EXPECT_GT(perLine, 54.0);
    EXPECT_LT(perLine, 60.0);

    // A bus log: mostly frames of the four frame types, a few events.
    std::map<unsigned, std::size_t> counts;
    for (const auto& line : RecordLines(out.str()))
        ++counts[TypeOf(line)];
    const std::size_t frames = counts[0x5000] + counts[0x5800] + counts[0x6000] + counts[0x6800];
    EXPECT_GT(frames, summary.records * 95 / 100);
    EXPECT_LT(frames, summary.records);

    // Every type mixed in short lines: the benchmark's trace of the most index work per byte.
    options.mix = RecordMix::All;
    std::ostringstream mixed;
    const ClassicTraceSummary mixedSummary = WriteClassicTraceWithSummary(mixed, options);
    EXPECT_GE(mixedSummary.bytes, options.targetBytes);
    EXPECT_LT(mixedSummary.bytes, options.targetBytes + 100);
    const double mixedPerLine = static_cast<double>(mixedSummary.bytes) / static_cast<double>(mixedSummary.records);
    EXPECT_GT(mixedPerLine, 20.0);
    EXPECT_LT(mixedPerLine, 32.0);
    EXPECT_EQ(TypesOf(RecordLines(mixed.str())), TypesOf(LegacyRecordLines(1)));
}

TEST(ClassicTraceGenerator, TimesAreDeltasOnlyForZdtTracesOfSchemas2_5_501) {
    auto decimalTimes = [](const ClassicTraceOptions& options) {
        std::vector<long> times;
        for (const auto& line : RecordLines(MakeClassicTrace(options)))
            if (TypeOf(line) == 0x5000 || TypeOf(line) == 0x6000)
                times.push_back(std::atol(line.c_str() + 17));
        return times;
    };
    ClassicTraceOptions options;
    options.mix = RecordMix::Traffic;
    options.records = 3000;
    for (const char* schema : {"2", "5", "501"}) {
        options.schema = schema;
        const auto deltas = decimalTimes(options);
        EXPECT_LE(*std::max_element(deltas.begin(), deltas.end()), 50000) << schema;
        EXPECT_GE(*std::min_element(deltas.begin(), deltas.end()), 1) << schema;
    }
    options.schema = "601";
    auto absolute = decimalTimes(options);
    EXPECT_TRUE(std::is_sorted(absolute.begin(), absolute.end()));
    options.schema = "501";
    options.title = "CAN Onboard Trace";
    absolute = decimalTimes(options);
    EXPECT_TRUE(std::is_sorted(absolute.begin(), absolute.end()));
    EXPECT_GT(absolute.back(), 50000);
    options.title = "ZDT Trace File";
    options.schema = "601";
    options.timeStyle = TimeStyle::Delta;
    EXPECT_LE(decimalTimes(options).back(), 50000);
}

TEST(ClassicTraceGenerator, LineEndingsAreConsistent) {
    ClassicTraceOptions options;
    options.records = 20;
    options.historyPlacement = HistoryPlacement::AtEnd;
    options.history = {{"C:\\a.flt", '1'}, {"D:\\b.flt", 0}};
    std::string text = MakeClassicTrace(options);
    ASSERT_GE(text.size(), 2u);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            ASSERT_TRUE(i > 0 && text[i - 1] == '\r') << i;
        }
        if (text[i] == '\r') {
            ASSERT_TRUE(i + 1 < text.size() && text[i + 1] == '\n') << i;
        }
    }

    options.writeDescription = false;
    options.historyPlacement = HistoryPlacement::None;
    options.lineEnding = LineEnding::LfOnly;
    options.lastLineWithoutEnding = true;
    text = MakeClassicTrace(options);
    EXPECT_EQ(text.rfind("[TraceData]\n", 0), 0u);
    EXPECT_EQ(text.find('\r'), std::string::npos);
    EXPECT_NE(text.back(), '\n');
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20);
}

TEST(ClassicTraceGeneratorWithReaders, FilterFileReadsBackAsWritten) {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("zdtgen-test-" + std::to_string(::getpid()) + ".flt")).string();
    // Past 16 entries the keys take two hex digits ("10", "11").
    std::vector<std::uint32_t> ids = {0x7DF, 0x98DAF110};
    for (std::uint32_t i = 0; i < 17; ++i)
        ids.push_back(0x700 + i);
    for (const auto style : {FilterValueStyle::Prefixed, FilterValueStyle::PlainHex})
        for (const char* type : {"StopFilter", "PassFilter"}) {
            {
                std::ofstream out(path, std::ios::binary);
                out << MakeCanFilterFile(type, ids, style);
            }
            const FltFilter filter = ReadFltFile(path);
            EXPECT_EQ(filter.stopFilter, std::string(type) == "StopFilter");
            EXPECT_EQ(filter.identifiers, ids) << type;
        }
    {
        std::ofstream out(path, std::ios::binary);
        out << MakeCanFilterFile("StopFilter", {});
    }
    EXPECT_TRUE(ReadFltFile(path).identifiers.empty());
    std::filesystem::remove(path);
}

// ---- the generated lines as the core reads them -------------------------------------------

namespace {

std::uint8_t KindOf(const CTraceItemI& item) {
    std::uint8_t kind = 0xEE;
    item.GetKind(kind);
    return kind;
}

// The record kind each type code makes, per reader; everything else is an event.
std::uint8_t ExpectedKind(unsigned type, bool legacy) {
    static const std::map<unsigned, std::uint8_t> legacyKinds = {
        {0x0003, 5}, {0x0004, 5}, {0x0008, 5}, {0x000A, 5}, {0x8002, 5}, {0x8003, 5}, {0x0020, 3}, {0x0021, 3},
        {0x8012, 3}, {0x8013, 3}, {0x5000, 3}, {0x5800, 3}, {0x6000, 3}, {0x6800, 3}, {0x0030, 6}, {0x8022, 6},
        {0x0034, 7}, {0x0035, 7}, {0x0036, 7}, {0x0037, 9}, {0x8023, 9}, {0x8024, 9}, {0xFF07, 2}, {0xFF08, 2}};
    static const std::map<unsigned, std::uint8_t> v701Kinds = {
        {0x0003, 5},  {0x0004, 5}, {0x0030, 6}, {0x400A, 4},  {0x0034, 7},  {0x0035, 7},
        {0x8013, 7},  {0x0050, 8}, {0x0051, 8}, {0x0038, 16}, {0x0039, 16}, {0x0090, 16},
        {0x0091, 16}, {0x5000, 3}, {0x5800, 3}, {0x6000, 3},  {0x6800, 3}};
    const auto& kinds = legacy ? legacyKinds : v701Kinds;
    if (!legacy && type >= 0xFF01 && type <= 0xFF08)
        return 2;
    const auto found = kinds.find(type);
    return found == kinds.end() ? 1 : found->second;
}

void ExpectReaderAgrees(const std::vector<std::string>& lines, bool legacy) {
    const std::set<unsigned> unknown = {0x0099, 0x7ABC, 0xF123};
    for (const auto& line : lines) {
        CTraceItemI item;
        if (legacy)
            item.ParseLine(line.c_str(), 1);
        else
            item.ParseLineV701(line.c_str(), 1);
        const unsigned type = TypeOf(line);
        EXPECT_EQ(item.GetTypeCode(), type) << line;
        std::uint32_t code = 0;
        item.GetEventCode(code);
        if (unknown.count(type)) {
            EXPECT_EQ(code, 0x20040010u) << line;
            continue;
        }
        const bool invalidCan = legacy && KindOf(item) == 1 && code == 0x50080016;
        if (!invalidCan) {
            EXPECT_EQ(KindOf(item), ExpectedKind(type, legacy)) << line;
        }
        if (KindOf(item) == 1 && (type & 0xFF00) != 0xFF00) {
            EXPECT_NE(code, 0x20040010u) << "read as an unknown event: " << line;
        }
    }
}

} // namespace

TEST(ClassicTraceGeneratorWithReaders, EveryLineReadsAsTheKindOfItsType) {
    ExpectReaderAgrees(LegacyRecordLines(3), true);
    ExpectReaderAgrees(V701RecordLines(3), false);
}

TEST(ClassicTraceGeneratorWithReaders, FieldsLandWhereTheReadersLook) {
    // Legacy CAN lengths count the identifier bytes.
    std::map<unsigned, std::set<int>> dataLengthsByField;
    for (const auto& line : LinesOfType(LegacyRecordLines(8), 0x8012)) {
        CTraceItemI item;
        item.ParseLine(line.c_str(), 1);
        const int field = static_cast<int>(std::strtoul(line.substr(14, 4).c_str(), nullptr, 16));
        std::uint8_t length = 0xEE;
        if (KindOf(item) == 3)
            item.GetDataLength(length);
        dataLengthsByField[static_cast<unsigned>(field)].insert(KindOf(item) == 3 ? length : -1);
    }
    EXPECT_EQ(dataLengthsByField[3], std::set<int>{-1});
    EXPECT_EQ(dataLengthsByField[4], std::set<int>{0});
    EXPECT_EQ(dataLengthsByField[8], std::set<int>{4});
    EXPECT_EQ(dataLengthsByField[13], std::set<int>{8});
    EXPECT_EQ(dataLengthsByField[20], std::set<int>{8});

    for (const auto& line : V701RecordLines(8)) {
        CTraceItemI item;
        item.ParseLineV701(line.c_str(), 1);
        const unsigned type = TypeOf(line);
        if (type == 0x0038 || type == 0x0091) {
            // Fixed-column data bytes come back as written.
            const std::size_t dataColumn = type == 0x0038 ? 30 : 35;
            std::uint8_t length = 0;
            const std::uint8_t* data = nullptr;
            item.GetDataLength(length);
            item.GetData(data);
            ASSERT_EQ(dataColumn + 3u * length - 1, line.size()) << line;
            for (std::size_t i = 0; i < length; ++i)
                EXPECT_EQ(data[i], std::strtoul(line.substr(dataColumn + 3 * i, 2).c_str(), nullptr, 16)) << line;
        }
        if (type == 0x0000 || type == 0x4401 || type == 0x5703) {
            // Dash form: a "-" in place of the time means no time.
            EXPECT_EQ(item.HasTime(), line.back() != '-') << line;
        }
    }
}

// The head, the reader and the time style the trace file picks are those the generator
// says it wrote, and every record comes back with the type code of its line.
TEST(ClassicTraceGeneratorWithReaders, TraceFileReadsTheHeadAndEveryRecordBack) {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("zdtgen-head-" + std::to_string(::getpid()) + ".trc")).string();
    struct Case {
        const char* schema;
        const char* title;
        RecordMix mix;
    };
    const std::vector<Case> cases = {
        {"2", "ZDT Trace File", RecordMix::Events},    {"5", "ZDT Trace File", RecordMix::KLine},
        {"5", "CAN Onboard Trace", RecordMix::Can},    {"501", "ZDT Trace File", RecordMix::All},
        {"601", "ZDT Trace File", RecordMix::Traffic}, {"701", "ZDT Trace File", RecordMix::All},
        {"", "ZDT Trace File", RecordMix::All},
    };
    for (const Case& c : cases) {
        ClassicTraceOptions options;
        options.schema = c.schema;
        options.title = c.title;
        options.mix = c.mix;
        options.records = 400;
        options.creator.reset();
        options.interfaceBoard = "Box <7>";
        const std::string trace = MakeClassicTrace(options);
        {
            std::ofstream out(path, std::ios::binary);
            out << trace;
        }
        const std::string label = std::string(c.schema) + " " + c.title;
        CTraceFile file;
        ASSERT_TRUE(file.OpenTrace(path)) << label;
        EXPECT_EQ(file.GetTitle(), c.title) << label;
        EXPECT_EQ(file.GetSchema(), c.schema) << label;
        EXPECT_EQ(file.GetCreator(), "") << label;
        EXPECT_EQ(file.GetProductVersion(), *options.productVersion) << label;
        EXPECT_EQ(file.GetInterfaceBoard(), "Box <7>") << label;
        EXPECT_EQ(file.GetDate(), *options.date) << label;
        EXPECT_EQ(file.GetTime(), *options.time) << label;
        EXPECT_EQ(file.UsesLegacyReader(), UsesLegacyFormat(options)) << label;
        EXPECT_EQ(file.IsDeltaTimes(), UsesDeltaTimes(options)) << label;
        EXPECT_FALSE(file.HasHistory()) << label;

        const auto lines = RecordLines(trace);
        ASSERT_EQ(file.TotalCount(), lines.size()) << label;
        for (zdt::RowIndex i = 0; i < file.TotalCount(); ++i) {
            CTraceItemI* item = file.GetItem(i);
            ASSERT_NE(item, nullptr) << label << " " << i;
            EXPECT_EQ(item->GetTypeCode(), TypeOf(lines[i])) << label << " " << lines[i];
            file.ReleaseItem(item);
        }
    }
    std::filesystem::remove(path);
}

TEST(ClassicTraceGeneratorWithReaders, IndexCountsWhatTheSummaryCounts) {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("zdtgen-test-" + std::to_string(::getpid()) + ".trc")).string();
    ClassicTraceOptions options;
    options.records = 3000;
    options.hostile = HostileExtras::AllKinds();
    options.hostile.every = 9;
    options.historyPlacement = HistoryPlacement::InTraceData;
    options.history = {{"C:\\Filters\\Stop_7E8.flt", '1'}, {"C:\\Filters\\Pass_7DF.flt", '0'}};
    for (const char* schema : {"501", "601", "701"}) {
        for (bool unterminated : {false, true}) {
            options.schema = schema;
            options.lastLineWithoutEnding = unterminated;
            ClassicTraceSummary summary;
            {
                std::ofstream out(path, std::ios::binary);
                summary = WriteClassicTraceWithSummary(out, options);
            }
            CTraceFile trace;
            ASSERT_TRUE(trace.OpenTrace(path)) << schema;
            // A reader by lines drops an unterminated last line.
            EXPECT_EQ(trace.TotalCount(), summary.records - (unterminated ? 1 : 0)) << schema;
            EXPECT_TRUE(trace.HasHistory());
            EXPECT_EQ(trace.GetLastFilter(), "Pass_7DF.flt");
            EXPECT_FALSE(trace.GetFilterActive());
            if (!unterminated) {
                char line[CTraceFile::MaxRecordLine + 1];
                ASSERT_TRUE(trace.ReadRecordLine(trace.VisibleOffsets().Get(trace.TotalCount() - 1), line));
                EXPECT_EQ(line, summary.lastRecordLine.substr(0, CTraceFile::MaxRecordLine));
                EXPECT_EQ(trace.VisibleOffsets().Get(trace.TotalCount() - 1), summary.lastRecordOffset);
            }
        }
    }
    std::filesystem::remove(path);
}
