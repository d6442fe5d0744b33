#include "trace/RecordLineWalker.h"
#include "ClassicTraceGenerator.h"
#include "trace/IndexLineKinds.h"
#include "trace/IndexTimeReader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// Every field, for comparing and for the message of a mismatch.
std::string Describe(const IndexLineFacts& facts) {
    return "time " + std::to_string(facts.time) + " channel " + std::to_string(facts.channelNumber) + " flags " +
           std::to_string(facts.channel) + std::to_string(facts.identifier) +
           std::to_string(facts.sourceDestinationPriority) + std::to_string(facts.flex);
}

IndexLineFacts GeneralFacts(const std::string& line) {
    IndexLineFacts facts;
    ReadIndexLineFacts(line.c_str(), line.size(), facts);
    return facts;
}

// The quick reader on `line` as the walk hands it over: no zero behind it, and garbage
// in the bytes it may load past the end.
bool QuickFacts(const std::string& line, IndexLineFacts& facts) {
    std::string padded = line + '\r' + std::string(16, '7');
    return indexline::ReadFactsQuick(padded.data(), line.size(), facts);
}

TEST(IndexLineKinds, QuickReaderAgreesWithTheGeneralOneOrDeclines) {
    std::mt19937 random(11);
    std::vector<std::string> lines = zdtgen::LegacyRecordLines(4);
    const std::vector<std::string> v701 = zdtgen::V701RecordLines(4);
    lines.insert(lines.end(), v701.begin(), v701.end());
    std::size_t accepted = 0;
    for (const std::string& line : lines) {
        IndexLineFacts quick;
        if (QuickFacts(line, quick)) {
            ++accepted;
            ASSERT_EQ(Describe(quick), Describe(GeneralFacts(line))) << line;
        }
    }
    // The writers' own lines are what the quick reader is for.
    EXPECT_GT(accepted, lines.size() * 9 / 10);

    // Lines bent at random places: blanks, other digits, letters and bytes, cut short.
    const std::string alphabet = "0123456789abcdefABCDEFgGxX :/@`-+\t\x80\xff";
    for (int round = 0; round < 200000; ++round) {
        std::string line = lines[random() % lines.size()];
        for (int changes = static_cast<int>(random() % 4); changes > 0 && !line.empty(); --changes)
            line[random() % line.size()] = alphabet[random() % alphabet.size()];
        if (random() % 4 == 0)
            line.resize(random() % (line.size() + 1));
        IndexLineFacts quick;
        if (QuickFacts(line, quick)) {
            ASSERT_EQ(Describe(quick), Describe(GeneralFacts(line))) << '"' << line << '"';
        }
    }
}

TEST(IndexLineKinds, LeadingHexDigitsReadAtOnceAgreeWithTheCLibrary) {
    std::mt19937 random(5);
    const std::string alphabet = "0123456789abcdefABCDEF/:@G`g \x80\xb0\xc6\xe6";
    for (int round = 0; round < 100000; ++round) {
        char text[9] = {};
        // Mostly digits, so that every length of run comes up.
        for (int i = 0; i < 8; ++i)
            text[i] = alphabet[random() % (random() % 8 == 0 ? alphabet.size() : 22)];
        unsigned expectedCount = 0;
        while (expectedCount < 8 && std::strchr("0123456789abcdefABCDEF", text[expectedCount]) != nullptr)
            ++expectedCount;
        std::uint32_t value = 0;
        ASSERT_EQ(indexline::LeadingHexDigits(text, value), expectedCount) << text;
        ASSERT_EQ(value, std::strtoul(std::string(text, expectedCount).c_str(), nullptr, 16)) << text;
    }
}

// Blank-separated tokens as a plain loop reads them: token 1 the channel, token 3 the time.
IndexLineFacts PlainTokens(const std::string& text) {
    std::vector<std::string> tokens;
    std::string token;
    for (const char c : text + ' ') {
        if (c != ' ') {
            token += c;
        } else if (!token.empty()) {
            tokens.push_back(token);
            token.clear();
        }
    }
    IndexLineFacts facts;
    if (!tokens.empty())
        facts.channelNumber = ParseChannelToken(tokens[0].data(), tokens[0].size());
    if (tokens.size() >= 3)
        facts.time = static_cast<std::uint32_t>(std::atol(tokens[2].c_str()));
    return facts;
}

TEST(IndexLineKinds, TokenLayoutsAgreeWithAPlainTokenizer) {
    std::mt19937 random(9);
    const char* shapes[] = {"01 000007E8 0000001000 0008 01 02",
                            "0a 18DAF110 4294967295 0008",
                            "04 R 0000114982",
                            "02 T 0000000001",
                            "03 X 12",
                            "01  000007E8 0000001000",
                            "1 R 0000000010",
                            "01 R  0000000010",
                            "01 R",
                            "01 RR 99999999999 3",
                            "0f T -0000000042"};
    const std::string alphabet = "0123456789aAfF ";
    for (int round = 0; round < 50000; ++round) {
        std::string text = shapes[random() % std::size(shapes)];
        if (random() % 2 == 0)
            text[random() % text.size()] = alphabet[random() % alphabet.size()];
        if (random() % 4 == 0)
            text.resize(random() % (text.size() + 1));
        const IndexLineFacts read = ReadTokenFields(text.data(), text.data() + text.size());
        const IndexLineFacts plain = PlainTokens(text);
        ASSERT_EQ(read.time, plain.time) << '"' << text << '"';
        ASSERT_EQ(read.channelNumber, plain.channelNumber) << '"' << text << '"';
    }
}

struct Walked {
    std::vector<std::uint64_t> offsets;
    std::vector<std::uint32_t> times;
    std::vector<std::int32_t> channels;
    RecordLineWalker::Result result;
};

// The rules of the line window, one line after the other, with the general reader.
Walked ReferenceWalk(const std::string& text, std::uint64_t from, std::uint64_t limit, std::size_t window, int schema) {
    Walked walked;
    std::uint64_t offset = from;
    walked.result = {offset, RecordLineWalker::Stop::EndOfLines};
    while (offset < text.size()) {
        if (offset >= limit) {
            walked.result = {offset, RecordLineWalker::Stop::ReachedLimit};
            return walked;
        }
        const std::size_t scan = std::min<std::size_t>(window, text.size() - offset);
        const auto* cr = static_cast<const char*>(std::memchr(text.data() + offset, '\r', scan));
        if (cr == nullptr)
            break;
        const std::string line(text.data() + offset, cr);
        if (line.compare(0, 17, "[AnalyzerHistory]") == 0) {
            walked.result = {offset, RecordLineWalker::Stop::HistorySection};
            return walked;
        }
        const char c = line.empty() ? '\0' : line[0];
        const bool record = c == ' ' || c == '0' || (c >= '4' && c <= '8') || c == 'F' || c == 'f';
        if (record) {
            walked.offsets.push_back(offset);
            if (!(c >= '4' && c <= '7' && schema >= 701)) {
                const IndexLineFacts facts = GeneralFacts(line);
                walked.times.push_back(facts.time);
                walked.channels.push_back(facts.channelNumber);
            }
        }
        offset += line.size() + 2;
    }
    walked.result = {offset, RecordLineWalker::Stop::EndOfLines};
    return walked;
}

// Record lines of every length around the 64-byte strides and a small window, with
// doubled and lone carriage returns, empty lines and now and then a history header.
std::string StrideTrace(unsigned seed, std::size_t bytes, std::size_t window) {
    std::mt19937 random(seed);
    const std::vector<std::string> lines = zdtgen::LegacyRecordLines(seed);
    std::string text;
    while (text.size() < bytes) {
        std::string line = lines[random() % lines.size()];
        const std::size_t length = random() % (window + 8);
        line.resize(length, ' ');
        text += line;
        switch (random() % 40) {
        case 0:
            text += "\r\r\n";
            break;
        case 1:
            text += "\r";
            break;
        case 2:
            text += "\r\n\r\n";
            break;
        case 3:
            if (random() % 8 == 0)
                text += "\r\n[AnalyzerHistory]";
            text += "\r\n";
            break;
        default:
            text += "\r\n";
            break;
        }
    }
    if (random() % 2 == 0)
        text.resize(text.size() - 1 - random() % 3); // no line end behind the last line
    return text;
}

TEST(RecordLineWalker, AgreesWithTheLineWindowRulesAtEveryStrideAndBlockBorder) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const std::size_t window = seed % 3 == 0 ? 8192 : 70 + seed * 13;
        const std::string text = StrideTrace(seed, 300000 + seed * 77777, window);
        const RecordLineWalker::ReadAt readAt = [&text](std::uint64_t at, char* into, std::size_t count) {
            if (at >= text.size())
                return std::size_t(0);
            const std::size_t got = std::min<std::size_t>(count, text.size() - at);
            std::memcpy(into, text.data() + at, got);
            return got;
        };
        const int schema = seed % 2 == 0 ? 701 : 601;
        RecordLineWalker walker(readAt, text.size(), window, schema);
        std::mt19937 random(seed);
        for (int walk = 0; walk < 40; ++walk) {
            const std::uint64_t from = walk == 0 ? 0 : random() % text.size();
            const std::uint64_t limit = walk % 3 == 0 ? text.size() : from + random() % 600000;
            IndexBatch batch;
            batch.offsets.Reserve(3)[0] = 1234; // kept: a walk appends
            batch.offsets.Grow(1);
            const RecordLineWalker::Result result = walker.Walk(from, limit, batch);
            const Walked expected = ReferenceWalk(text, from, limit, window, schema);
            ASSERT_EQ(result.next, expected.result.next) << seed << " from " << from;
            ASSERT_EQ(result.stop, expected.result.stop) << seed << " from " << from;
            ASSERT_EQ(batch.offsets.size(), expected.offsets.size() + 1) << seed << " from " << from;
            EXPECT_EQ(batch.offsets.data()[0], 1234u);
            for (std::size_t i = 0; i < expected.offsets.size(); ++i)
                ASSERT_EQ(batch.offsets.data()[i + 1], expected.offsets[i]) << seed << " record " << i;
            ASSERT_EQ(batch.times.size(), expected.times.size());
            for (std::size_t i = 0; i < expected.times.size(); ++i) {
                ASSERT_EQ(batch.times.data()[i], expected.times[i]) << seed << " record " << i;
                ASSERT_EQ(batch.channels.data()[i], expected.channels[i]) << seed << " record " << i;
            }
        }
    }
}

} // namespace
