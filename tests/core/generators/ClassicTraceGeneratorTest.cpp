#include "ClassicTraceGenerator.h"
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

unsigned TypeOf(const std::string& line) { return static_cast<unsigned>(std::strtoul(line.substr(0, 4).c_str(), nullptr, 16)); }

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

// Runs sscanf with room for every conversion; returns the count and, through `consumed`,
// how far the format reached (its last directive is " %n").
int Scan(const char* text, const std::string& format, int* consumed = nullptr) {
    union Slot {
        unsigned long number;
        char token[300];
    };
    std::vector<Slot> s(28);
    for (auto& slot : s)
        std::memset(&slot, 0, sizeof slot);
    const std::string full = format + " %n";
    const int count = std::sscanf(text, full.c_str(), &s[0], &s[1], &s[2], &s[3], &s[4], &s[5], &s[6], &s[7], &s[8],
                                  &s[9], &s[10], &s[11], &s[12], &s[13], &s[14], &s[15], &s[16], &s[17], &s[18],
                                  &s[19], &s[20], &s[21], &s[22], &s[23], &s[24], &s[25], &s[26], &s[27]);
    if (consumed != nullptr)
        *consumed = count >= 0 ? static_cast<int>(s[static_cast<std::size_t>(count)].number & 0xFFFFFFFF) : -1;
    return count;
}

// The formats the readers apply at the sixth character, and how many values each yields.
struct LineFormatCase {
    std::vector<unsigned> types;
    const char* format;
    int values;
};

const std::vector<LineFormatCase>& LegacyFormats() {
    static const std::vector<LineFormatCase> cases = {
        {{0x0000, 0x0005, 0x0006, 0x000F, 0x0033, 0x0080, 0x00FE, 0x00FF, 0x8000, 0x8001, 0x8004, 0x8005, 0x800E,
          0x800F, 0x801E, 0x801F, 0x8020, 0x8021, 0x8025, 0x8026},
         " %08x", 1},
        {{0x0003, 0x0004, 0x0008, 0x000A, 0x8002, 0x8003}, "%08x %04x %02x %02x", 4},
        {{0x0020, 0x0021},
         "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x", 15},
        {{0x8012, 0x8013}, "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x ", 14},
        {{0x0022}, "%08x %04x %02x", 3},
        {{0x0030, 0x8022}, "%08x %04x %02x %02x %02x %02x %02x %02x", 8},
        {{0x0031, 0x0032}, " %08x %04x %02x", 3},
        {{0x0034, 0x0035, 0x0036}, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x %02x", 14},
        {{0x0037}, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x ", 11},
        {{0x8023, 0x8024}, "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x", 10},
        {{0x4400, 0x4401, 0x4402, 0x4403, 0x4404, 0x4405, 0x4406, 0x4407, 0x4408, 0x4409}, "%02x %01s %010d", 3},
        {{0x5000, 0x5800, 0x6000, 0x6800}, "%02x %08x %010d %04x %02x %02x %02x %02x %02x %02x %02x %02x", 12},
        {{0xFF07}, " %02d %01s %02d %01s %04d %02d %01s %02d %01s %02d", 10},
        {{0xFF08}, "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d %s", 13},
    };
    return cases;
}

const std::vector<LineFormatCase>& V701Formats() {
    static const std::vector<LineFormatCase> cases = {
        {{0x0003, 0x0004}, "%1s %d %04x %02x %02x", 5},
        {{0x0034, 0x0035, 0x8013},
         "%s %d %04x %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x "
         "%02x %02x %02x %02x",
         25},
        {{0x0050, 0x0051},
         "%s %d %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x "
         "%02x %02x %02x",
         24},
        {{0x440D}, " %8X %10lu", 2},
        {{0x5000, 0x5800, 0x6000, 0x6800}, " %8X %10lu %04d  %02x %02x %02x %02x %02x %02x %02x %02x", 11},
        {{0xFF01, 0xFF02, 0xFF03, 0xFF04, 0xFF05, 0xFF06, 0xFF07},
         "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d", 12},
        {{0xFF08}, "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d %s", 13},
    };
    return cases;
}

// Whether `text` is laid out as `format` says, stricter than sscanf in two ways: zero-padded
// fields have exactly their width, and a run of two or more blanks must stand as it is.
bool MatchesLayout(const std::string& format, const std::string& text) {
    std::size_t at = 0;
    auto count = [&](auto isWanted, std::size_t most) {
        std::size_t n = 0;
        while (at < text.size() && n < most && isWanted(static_cast<unsigned char>(text[at]))) {
            ++at;
            ++n;
        }
        return n;
    };
    auto isBlank = [](unsigned char c) { return c == ' '; };
    for (std::size_t i = 0; i < format.size();) {
        if (format[i] == ' ') {
            const std::size_t run = std::min(format.find_first_not_of(' ', i), format.size()) - i;
            i += run;
            if (count(isBlank, run == 1 ? text.size() : run) < run && run > 1)
                return false;
            continue;
        }
        if (format[i] != '%') {
            if (at >= text.size() || text[at++] != format[i++])
                return false;
            continue;
        }
        const bool zeroPadded = format[++i] == '0';
        std::size_t width = 0;
        while (std::isdigit(static_cast<unsigned char>(format[i])))
            width = width * 10 + static_cast<std::size_t>(format[i++] - '0');
        if (format[i] == 'l')
            ++i;
        const char conversion = format[i++];
        if (conversion == 's') {
            if (count([](unsigned char c) { return c > ' '; }, width == 0 ? text.size() : width) == 0)
                return false;
            continue;
        }
        auto isDigit = [conversion](unsigned char c) {
            return conversion == 'x' || conversion == 'X' ? std::isxdigit(c) != 0 : std::isdigit(c) != 0;
        };
        if (!zeroPadded && width != 0)
            count(isBlank, width - 1); // blank-padded to its width
        const std::size_t digits = count(isDigit, width == 0 ? text.size() : width);
        if (digits == 0 || (zeroPadded && digits != width))
            return false;
    }
    return at == text.size();
}

// Checks that each line's fields scan completely by its type's format, leaving nothing over.
void ExpectLinesScan(const std::vector<std::string>& lines, const std::vector<LineFormatCase>& cases) {
    std::set<unsigned> checked;
    for (const auto& line : lines)
        for (const auto& c : cases)
            if (std::find(c.types.begin(), c.types.end(), TypeOf(line)) != c.types.end()) {
                int consumed = 0;
                EXPECT_EQ(Scan(line.c_str() + 5, c.format, &consumed), c.values) << line;
                EXPECT_EQ(consumed, static_cast<int>(line.size()) - 5) << "fields left over: " << line;
                EXPECT_TRUE(MatchesLayout(c.format, line.substr(5))) << c.format << "\n" << line;
                checked.insert(TypeOf(line));
            }
    for (const auto& c : cases)
        for (unsigned type : c.types)
            EXPECT_TRUE(checked.count(type)) << std::hex << type;
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

    std::set<unsigned> v701 = {0x0000, 0x0003, 0x0004, 0x0005, 0x0006, 0x0008, 0x000A, 0x000F, 0x0030, 0x0031,
                               0x0032, 0x0033, 0x0034, 0x0035, 0x8013, 0x0038, 0x0039, 0x0040, 0x0041, 0x0050,
                               0x0051, 0x0080, 0x0090, 0x0091, 0x00FC, 0x00FD, 0x00FE, 0x00FF, 0x0400, 0x400A,
                               0x440B, 0x440C, 0x440D, 0x5000, 0x5800, 0x6000, 0x6800, 0x8004, 0x8005, 0x800E,
                               0x8020, 0x8021};
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

TEST(ClassicTraceGenerator, LegacyLinesScanCompletelyByTheirFormats) {
    for (std::uint64_t seed : {1u, 2u, 3u})
        ExpectLinesScan(LegacyRecordLines(seed), LegacyFormats());
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
        if ((TypeOf(line) & 0xFF00) == 0x4400 || (TypeOf(line) & 0xF0FF) == 0x5000 || (TypeOf(line) & 0xF0FF) == 0x6000) {
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

TEST(ClassicTraceGenerator, V701LinesFollowTheirFormatsAndColumns) {
    const auto lines = V701RecordLines(4);
    ExpectLinesScan(lines, V701Formats());

    for (unsigned type : {0x0038u, 0x0039u})
        for (const auto& line : LinesOfType(lines, type)) {
            unsigned id = 0;
            unsigned long time = 0, length = 0;
            EXPECT_EQ(std::sscanf(line.c_str() + 5, " %8X", &id), 1) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 14, "%10lu", &time), 1) << line;
            EXPECT_TRUE(DigitAt(line, 23)) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 25, "%4lu", &length), 1) << line;
            EXPECT_EQ(line.size(), 30 + 3 * length - 1) << "one byte per three columns from 30: " << line;
        }
    for (unsigned type : {0x0090u, 0x0091u})
        for (const auto& line : LinesOfType(lines, type)) {
            char letter[2] = {};
            int slot = -1;
            unsigned id = 0;
            unsigned long time = 0, length = 0;
            EXPECT_EQ(std::sscanf(line.c_str() + 5, " %1s", letter), 1) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 7, " %02d", &slot), 1) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 10, " %8X", &id), 1) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 19, "%10lu", &time), 1) << line;
            EXPECT_EQ(std::sscanf(line.c_str() + 30, "%4lu", &length), 1) << line;
            EXPECT_TRUE(std::isupper(static_cast<unsigned char>(letter[0])) && DigitAt(line, 28)) << line;
            EXPECT_EQ(line.size(), 35 + 3 * length - 1) << line;
        }

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
        EXPECT_EQ(text.compare(summary.lastRecordOffset, summary.lastRecordLine.size() + 2,
                               summary.lastRecordLine + "\r\n"),
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

TEST(ClassicTraceGenerator, HeadKeysSectionsAndLineEndings) {
    ClassicTraceOptions options;
    options.records = 20;
    options.schema = "";
    options.creator.reset();
    options.extraHeadLines = {"sChEmA=701", "Colour=blue"};
    options.historyPlacement = HistoryPlacement::AtEnd;
    options.history = {{"C:\\a.flt", '1'}, {"D:\\b.flt", 0}};
    std::string text = MakeClassicTrace(options);
    EXPECT_EQ(text.rfind("[Description]\r\nTitle=ZDT Trace File\r\nProductVersion=7.3.0\r\n", 0), 0u);
    EXPECT_EQ(text.find("Schema="), std::string::npos);
    EXPECT_EQ(text.find("Creator="), std::string::npos);
    EXPECT_NE(text.find("\r\nsChEmA=701\r\nColour=blue\r\n[TraceData]\r\n"), std::string::npos);
    const std::string tail = "\r\n\r\n\r\n[AnalyzerHistory]\r\nCANFilter=1:C:\\a.flt\r\nCANFilter=D:\\b.flt\r\n";
    ASSERT_GT(text.size(), tail.size());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
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

TEST(ClassicTraceGenerator, FilterFileKeysAndValuesAreHexadecimal) {
    EXPECT_EQ(MakeCanFilterFile("StopFilter", {0x7E8, 0x98DAF110}),
              "[CAN]\r\nType=StopFilter\r\nNoOfEntries=2\r\n1=0x7E8\r\n2=0x98DAF110\r\n");
    std::vector<std::uint32_t> ids;
    for (std::uint32_t i = 0; i < 17; ++i)
        ids.push_back(0x700 + i);
    const std::string text = MakeCanFilterFile("PassFilter", ids, FilterValueStyle::PlainHex);
    EXPECT_NE(text.find("\r\nNoOfEntries=11\r\n"), std::string::npos);
    EXPECT_NE(text.find("\r\n9=708\r\nA=709\r\n"), std::string::npos);
    EXPECT_NE(text.find("\r\nF=70E\r\n10=70F\r\n11=710\r\n"), std::string::npos);
    EXPECT_EQ(MakeCanFilterFile("PassFilter", {}), "[CAN]\r\nType=PassFilter\r\nNoOfEntries=0\r\n");
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
        {0x0003, 5}, {0x0004, 5}, {0x0008, 5}, {0x000A, 5}, {0x8002, 5}, {0x8003, 5}, {0x0020, 3},
        {0x0021, 3}, {0x8012, 3}, {0x8013, 3}, {0x5000, 3}, {0x5800, 3}, {0x6000, 3}, {0x6800, 3},
        {0x0030, 6}, {0x8022, 6}, {0x0034, 7}, {0x0035, 7}, {0x0036, 7}, {0x0037, 9}, {0x8023, 9},
        {0x8024, 9}, {0xFF07, 2}, {0xFF08, 2}};
    static const std::map<unsigned, std::uint8_t> v701Kinds = {
        {0x0003, 5}, {0x0004, 5}, {0x0030, 6}, {0x400A, 4}, {0x0034, 7}, {0x0035, 7}, {0x8013, 7},
        {0x0050, 8}, {0x0051, 8}, {0x0038, 16}, {0x0039, 16}, {0x0090, 16}, {0x0091, 16}, {0x5000, 3},
        {0x5800, 3}, {0x6000, 3}, {0x6800, 3}};
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
