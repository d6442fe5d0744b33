#pragma once

// The state of one classic trace write, shared by the record builders of each family.
// Only the generator's own sources include this.

#include "ClassicTraceGenerator.h"
#include "GeneratorRandom.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zdtgen {
namespace classic {

// Decimal time fields are read into an int, so the clock wraps below 2^31 like a counter.
constexpr std::uint32_t kClockWrap = 0x80000000u;

// One record line, built field by field: printf costs too much for a gigabyte of lines.
class LineBuffer {
public:
    LineBuffer() { m_text.reserve(512); }
    void Clear() { m_text.clear(); }
    void Char(char c) { m_text.push_back(c); }
    void Text(std::string_view text) { m_text.append(text); }
    void Blanks(std::size_t count) { m_text.append(count, ' '); }
    // "%0*X" (or "%0*x"): at least `width` digits.
    void Hex(std::uint32_t value, int width, bool lower = false) { Number(value, 16, width, '0', lower); }
    // "%*X": right-aligned, blank-padded.
    void HexBlankPadded(std::uint32_t value, int width) { Number(value, 16, width, ' ', false); }
    void Dec(std::uint64_t value, int width, char pad) { Number(value, 10, width, pad, false); }
    const std::string& Str() const { return m_text; }
    std::string& Mutable() { return m_text; }

private:
    void Number(std::uint64_t value, unsigned base, int width, char pad, bool lower) {
        const char* digits = lower ? "0123456789abcdef" : "0123456789ABCDEF";
        char reversed[24];
        int count = 0;
        do {
            reversed[count++] = digits[value % base];
            value /= base;
        } while (value != 0);
        for (int i = count; i < width; ++i)
            m_text.push_back(pad);
        while (count > 0)
            m_text.push_back(reversed[--count]);
    }
    std::string m_text;
};

enum Group : std::uint8_t { GroupCan = 1, GroupKLine = 2, GroupEvent = 4, GroupOther = 8 };

enum class Hostile { Empty, DigitOne, Bracket, Long, Overlong, GarbageLine, GarbageRecord };

} // namespace classic

struct ClassicTraceGenerator::State {
    using LineBuffer = classic::LineBuffer;
    using Hostile = classic::Hostile;

    // One builder per line format of a type code; `variant` picks lengths, identifiers and forms.
    using Builder = void (State::*)(std::uint16_t type, int variant);
    struct Template {
        std::uint16_t type;
        Builder build;
        std::uint8_t groups;
        std::uint8_t variants;       // variants the type-code lists show
        std::uint8_t streamVariants; // the first ones of them, used in streamed files
    };

    explicit State(const ClassicTraceOptions& o)
        : options(o), random(o.seed), legacy(UsesLegacyFormat(o)), delta(UsesDeltaTimes(o)) {
        clock = 1000 + random.Below(1000000);
        bigGapOneIn = options.mix == RecordMix::Traffic ? 4096 : 64;
        for (auto& id : standardIds)
            id = 0x100 + random.Below(0x700);
        for (auto& id : extendedIds)
            id = 0x18000000 | random.Below(0x01000000);
        standardIds[0] = 0x7DF;
        standardIds[1] = 0x7E0;
        standardIds[2] = 0x7E8;
        extendedIds[0] = 0x18DA10F1;
        extendedIds[1] = 0x18DAF110;
        const auto& table = Templates();
        for (std::size_t i = 0; i < table.size(); ++i)
            if (MixWants(table[i]))
                mixTemplates.push_back(static_cast<std::uint16_t>(i));
        EnableHostileKinds();
    }

    // ---- the tables (ClassicRecordChoice.cpp) ---------------------------------------------
    static const std::vector<Template>& LegacyTemplates();
    static const std::vector<Template>& V701Templates();
    const std::vector<Template>& Templates() const { return legacy ? LegacyTemplates() : V701Templates(); }

    bool MixWants(const Template& t) const {
        switch (options.mix) {
        case RecordMix::All:
        case RecordMix::Traffic:
            return true;
        case RecordMix::Can:
            return (t.groups & classic::GroupCan) != 0;
        case RecordMix::KLine:
            return (t.groups & classic::GroupKLine) != 0;
        case RecordMix::Events:
            return (t.groups & classic::GroupEvent) != 0;
        }
        return true;
    }

    // ---- shared fields ----------------------------------------------------------------
    std::uint32_t NextTime() {
        std::uint32_t gap = 1 + random.Below(100);
        if (random.OneIn(bigGapOneIn))
            gap = 10001 + random.Below(40000); // above the 10 ms alarm threshold
        clock = (clock + gap) % classic::kClockWrap;
        return delta ? gap : clock;
    }
    std::uint32_t Length(std::uint32_t normal) const { return lengthOverride ? *lengthOverride : normal; }
    void Type(std::uint16_t type) { line.Hex(type, 4); }
    void Sp() { line.Char(' '); }
    void H2(std::uint32_t value) { line.Hex(value & 0xFF, 2, lowerCase); }
    void H4(std::uint32_t value) { line.Hex(value & 0xFFFF, 4, lowerCase); }
    void H8(std::uint32_t value) { line.Hex(value, 8, lowerCase); }
    void DataBytes(int count) {
        for (int i = 0; i < count; ++i) {
            Sp();
            H2(random.Byte());
        }
    }
    // Data bytes in groups, a double blank between groups, as the wide formats lay them out.
    void GroupedBytes(std::initializer_list<int> groups) {
        bool first = true;
        for (int group : groups) {
            if (!first)
                Sp();
            first = false;
            DataBytes(group);
        }
    }
    // Fixed-column data: two hex digits and one separator per byte.
    void FixedColumnBytes(int count) {
        for (int i = 0; i < count; ++i) {
            if (i > 0)
                Sp();
            H2(random.Byte());
        }
    }
    std::uint32_t StandardId() { return standardIds[random.Below(standardIds.size())]; }
    std::uint32_t ExtendedId() {
        return random.OneIn(2) ? extendedIds[random.Below(extendedIds.size())] : random.Below(0x20000000);
    }
    // Channel tokens in both letter cases; a bus log keeps to channels 1 to 4.
    std::string_view ChannelToken() {
        static constexpr std::array<std::string_view, 6> kAll = {"01", "02", "0a", "03", "0B", "04"};
        static constexpr std::array<std::string_view, 4> kBus = {"01", "02", "03", "04"};
        if (options.mix == RecordMix::Traffic)
            return kBus[random.Below(kBus.size())];
        return kAll[listMode ? channelCycle++ % kAll.size() : random.Below(kAll.size())];
    }
    std::string_view Token701() {
        static constexpr std::array<std::string_view, 4> kTokens = {"1", "2", "a", "B"};
        return kTokens[listMode ? tokenCycle++ % kTokens.size() : random.Below(kTokens.size())];
    }
    // Token at column 5, time right-aligned in columns 14 to 23, as the fixed columns expect.
    void Head701(std::uint16_t type) {
        Type(type);
        Sp();
        line.Text(Token701());
        line.Blanks(8);
    }
    void Time701() { line.Dec(NextTime(), 10, ' '); }
    void Dash701() {
        line.Blanks(9);
        line.Char('-');
    }

    // ---- choosing records ---------------------------------------------------------------------
    void BuildFromTemplate(const Template& t, int variant) { (this->*t.build)(t.type, variant); }
    const Template* FindTemplate(std::uint16_t type) const {
        for (const auto& t : Templates())
            if (t.type == type)
                return &t;
        return nullptr;
    }
    void BuildType(std::uint16_t type, int variant) { BuildFromTemplate(*FindTemplate(type), variant); }
    void BuildTrafficRecord();
    void BuildStreamRecord();
    std::vector<std::string> AllTypeLines();

    // ---- CAN and Flex frames (ClassicCanRecords.cpp) ------------------------------------------
    std::uint32_t LegacyCanLength(int variant);
    void LegacyIdentifierBytes(bool extended);
    void LegacyCanWithWord(std::uint16_t type, int variant);
    void LegacyCanPacked(std::uint16_t type, int variant);
    void LegacyCanFrame(std::uint16_t type, int variant);
    void V701CanFrame(std::uint16_t type, int variant);
    void FlexFrame(std::uint16_t type, int variant);
    void FlexFrameSlot(std::uint16_t type, int variant);

    // ---- K-line records (ClassicKLineRecords.cpp) ----------------------------------------------
    void LegacyLineByte(std::uint16_t type, int variant);
    std::uint32_t Baud(int variant);
    void LegacyBaudWithFormat(std::uint16_t type, int variant);
    void LegacyBaudWithoutFormat(std::uint16_t type, int variant);
    void LegacyPriorityFrame(std::uint16_t type, int variant);
    void LegacyByteBlock9(std::uint16_t type, int variant);
    void LegacyByteBlock8(std::uint16_t type, int variant);
    void V701LineByte(std::uint16_t type, int variant);
    void V701Baud(std::uint16_t type, int variant);
    void V701PriorityFrame(std::uint16_t type, int variant);
    void V701AddressedFrame(std::uint16_t type, int variant);

    // ---- events, marks and unknown types (ClassicEventRecords.cpp) -----------------------------
    void DateTime(char dateSeparator, bool yearFirst);
    std::string_view FilterName(int variant);
    void LegacyTimeOnly(std::uint16_t type, int);
    void LegacyCanState(std::uint16_t type, int variant);
    void LegacyBusLevel(std::uint16_t type, int variant);
    void LegacyChannelEvent(std::uint16_t type, int);
    void LegacyNoFields(std::uint16_t type, int);
    void LegacyPcTime(std::uint16_t type, int variant);
    void MarkRecord(std::uint16_t type, int variant);
    void UnknownType(std::uint16_t, int variant);
    void DashForm(std::uint16_t type, int variant);
    void ColumnTime(std::uint16_t type, int variant);
    void NoFields701(std::uint16_t type, int);
    void DashFormOrBare(std::uint16_t type, int variant);
    void IdentifiedEvent(std::uint16_t type, int);

    // ---- hostile lines (ClassicHostileLines.cpp) -----------------------------------------------
    void EnableHostileKinds();
    void GarbageBytes(std::size_t count);
    bool BuildHostileLine();
    void BuildOverlong();

    const ClassicTraceOptions options;
    Random random;
    LineBuffer line;
    bool legacy;
    bool delta;
    std::uint32_t clock = 0;
    std::uint32_t bigGapOneIn = 64;
    bool lowerCase = false;
    bool listMode = false;
    std::size_t channelCycle = 0;
    std::size_t tokenCycle = 0;
    std::optional<std::uint32_t> lengthOverride;
    std::array<std::uint32_t, 24> standardIds{};
    std::array<std::uint32_t, 8> extendedIds{};
    std::vector<std::uint16_t> mixTemplates;
    std::size_t blockPosition = 0;
    std::vector<Hostile> hostileKinds;
    std::size_t hostileNext = 0;
    std::size_t overlongNext = 0;
};

} // namespace zdtgen
