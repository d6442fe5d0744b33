#include "ClassicTraceGenerator.h"

#include "GeneratorRandom.h"

#include <array>
#include <optional>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>

namespace zdtgen {
namespace {

constexpr const char* kZdtTitle = "ZDT Trace File";
// Decimal time fields are read into an int, so the clock wraps below 2^31 like a counter.
constexpr std::uint32_t kClockWrap = 0x80000000u;
constexpr std::size_t kFlushBytes = 1u << 20;
constexpr std::size_t kLongLine = 300;

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

bool IsLegacySchema(const std::string& schema) {
    return schema == "2" || schema == "5" || schema == "501" || schema == "601";
}

} // namespace

bool HostileExtras::Any() const {
    return emptyLines || digitOneLines || bracketLines || longLines || overlongLengths || binaryGarbage;
}

HostileExtras HostileExtras::AllKinds() {
    HostileExtras extras;
    extras.emptyLines = extras.digitOneLines = extras.bracketLines = true;
    extras.longLines = extras.overlongLengths = extras.binaryGarbage = true;
    return extras;
}

bool UsesLegacyFormat(const ClassicTraceOptions& options) {
    switch (options.format) {
    case LineFormat::Legacy:
        return true;
    case LineFormat::V701:
        return false;
    case LineFormat::BySchema:
        break;
    }
    return IsLegacySchema(options.schema);
}

bool UsesDeltaTimes(const ClassicTraceOptions& options) {
    switch (options.timeStyle) {
    case TimeStyle::Delta:
        return true;
    case TimeStyle::Absolute:
        return false;
    case TimeStyle::BySchema:
        break;
    }
    const std::string& s = options.schema;
    return options.title && *options.title == kZdtTitle && (s == "2" || s == "5" || s == "501");
}

struct ClassicTraceGenerator::State {
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

    // ---- the tables -------------------------------------------------------------------
    static const std::vector<Template>& LegacyTemplates();
    static const std::vector<Template>& V701Templates();
    const std::vector<Template>& Templates() const { return legacy ? LegacyTemplates() : V701Templates(); }

    bool MixWants(const Template& t) const {
        switch (options.mix) {
        case RecordMix::All:
        case RecordMix::Traffic:
            return true;
        case RecordMix::Can:
            return (t.groups & GroupCan) != 0;
        case RecordMix::KLine:
            return (t.groups & GroupKLine) != 0;
        case RecordMix::Events:
            return (t.groups & GroupEvent) != 0;
        }
        return true;
    }

    // ---- shared fields ----------------------------------------------------------------
    std::uint32_t NextTime() {
        std::uint32_t gap = 1 + random.Below(100);
        if (random.OneIn(bigGapOneIn))
            gap = 10001 + random.Below(40000); // above the 10 ms alarm threshold
        clock = (clock + gap) % kClockWrap;
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
    void DateTime(char dateSeparator, bool yearFirst) {
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
    std::string_view FilterName(int variant) {
        static constexpr std::array<std::string_view, 3> kNames = {
            "Filter_7E8.flt", "StopAll.flt", "A_filter_name_longer_than_thirty_one_characters.flt"};
        return kNames[static_cast<std::size_t>(variant) % kNames.size()];
    }

    // ---- records of the reader of versions up to 601 -------------------------------------
    void LegacyTimeOnly(std::uint16_t type, int) {
        Type(type);
        Sp();
        H8(NextTime());
    }
    void LegacyLineByte(std::uint16_t type, int variant) {
        static constexpr std::array<std::uint32_t, 3> kLengths = {1, 2, 0};
        const std::uint32_t length = Length(kLengths[variant]);
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(length);
        Sp();
        H2(random.Byte());
        Sp();
        H2(length == 2 ? random.Byte() : 0);
    }
    // Lengths count the four identifier bytes: 3 is invalid, 13 and more give 8 data bytes.
    std::uint32_t LegacyCanLength(int variant) {
        static constexpr std::array<std::uint32_t, 5> kLengths = {3, 4, 8, 13, 20};
        return variant < 5 ? kLengths[variant] : 5 + random.Below(8);
    }
    void LegacyIdentifierBytes(bool extended) {
        const std::uint32_t id = extended ? (0x80000000u | ExtendedId()) : StandardId();
        for (int shift = 0; shift < 32; shift += 8) {
            Sp();
            H2(id >> shift);
        }
    }
    void LegacyCanWithWord(std::uint16_t type, int variant) {
        const std::uint32_t length = Length(LegacyCanLength(variant));
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(random.Below(0x10000));
        Sp();
        H2(length);
        LegacyIdentifierBytes(variant % 2 == 1);
        DataBytes(8);
    }
    void LegacyCanPacked(std::uint16_t type, int variant) {
        const std::uint32_t length = Length(LegacyCanLength(variant));
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(length);
        LegacyIdentifierBytes(variant % 2 == 1);
        DataBytes(8);
        Sp();
    }
    void LegacyCanState(std::uint16_t type, int variant) {
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(1);
        Sp();
        H2(variant < 7 ? variant + 1 : 0x0A); // 1 to 7 and one unknown state
    }
    std::uint32_t Baud(int variant) {
        static constexpr std::array<std::uint32_t, 4> kBauds = {10400, 9600, 500000, 115200};
        return kBauds[static_cast<std::size_t>(variant) % kBauds.size()];
    }
    void LegacyBaudWithFormat(std::uint16_t type, int variant) {
        static constexpr std::array<std::uint32_t, 4> kFormats = {6, 0, 17, 0x20};
        const std::uint32_t baud = Baud(variant);
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(Length(6));
        Sp();
        H2(0);
        for (int shift = 0; shift < 32; shift += 8) {
            Sp();
            H2(baud >> shift);
        }
        Sp();
        H2(kFormats[variant]);
    }
    void LegacyBaudWithoutFormat(std::uint16_t type, int variant) {
        const std::uint32_t baud = Baud(variant);
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(Length(6));
        Sp();
        H2(0);
        Sp();
        H2(0);
        for (int shift = 0; shift < 32; shift += 8) {
            Sp();
            H2(baud >> shift);
        }
    }
    void LegacyBusLevel(std::uint16_t type, int variant) {
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(1);
        Sp();
        H2(variant == 0 ? 1 : 0);
    }
    // Length counts priority, source and destination.
    void LegacyPriorityFrame(std::uint16_t type, int variant) {
        static constexpr std::array<std::uint32_t, 3> kLengths = {12, 3, 7};
        static constexpr std::array<std::uint32_t, 3> kPriorities = {0x68, 0x80, 0xC1};
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(Length(kLengths[variant]));
        Sp();
        H2(kPriorities[random.Below(3)]);
        Sp();
        H2(random.OneIn(2) ? 0xF1 : 0x10);
        Sp();
        H2(random.OneIn(2) ? 0x10 : 0x33);
        DataBytes(3);
        Sp();
        DataBytes(6);
    }
    void LegacyByteBlock9(std::uint16_t type, int variant) {
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(Length(variant == 0 ? 9 : 5));
        DataBytes(6);
        Sp();
        DataBytes(3);
        Sp();
    }
    void LegacyByteBlock8(std::uint16_t type, int variant) {
        Type(type);
        Sp();
        H8(NextTime());
        Sp();
        H4(Length(variant == 0 ? 8 : 3));
        DataBytes(6);
        Sp();
        DataBytes(2);
    }
    void LegacyChannelEvent(std::uint16_t type, int) {
        Type(type);
        Sp();
        line.Text(ChannelToken());
        Sp();
        line.Char(random.OneIn(2) ? 'R' : 'T');
        Sp();
        line.Dec(NextTime(), 10, '0');
    }
    void LegacyCanFrame(std::uint16_t type, int variant) {
        const bool extended = type == 0x5800 || type == 0x6800;
        std::uint32_t length = variant == 0 ? 8 : random.Below(8);
        if (options.mix == RecordMix::Traffic)
            length = random.OneIn(8) ? random.Below(8) : 8;
        Type(type);
        Sp();
        line.Text(ChannelToken());
        Sp();
        H8(extended ? ExtendedId() : StandardId());
        Sp();
        line.Dec(NextTime(), 10, '0');
        Sp();
        H4(Length(length));
        DataBytes(8);
    }
    void LegacyNoFields(std::uint16_t type, int) { Type(type); }
    // Day, month, year, hour, minute, second; leading blanks are allowed.
    void LegacyPcTime(std::uint16_t type, int variant) {
        Type(type);
        Sp();
        if (variant == 1)
            line.Blanks(2);
        DateTime(variant == 0 ? '.' : '/', false);
    }
    void MarkRecord(std::uint16_t type, int variant) {
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
    void UnknownType(std::uint16_t, int variant) {
        static constexpr std::array<std::uint16_t, 3> kTypes = {0x0099, 0x7ABC, 0xF123};
        Type(kTypes[static_cast<std::size_t>(variant) % kTypes.size()]);
        Sp();
        H8(random.Next() & 0xFFFFFFFFu);
        line.Text(" 01 02 03");
    }

    // ---- records of the 701 reader -----------------------------------------------------------
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
    void DashForm(std::uint16_t type, int variant) {
        Head701(type);
        if (variant == 0)
            Time701();
        else
            Dash701();
    }
    void ColumnTime(std::uint16_t type, int variant) {
        Head701(type);
        if (variant == 0) {
            Time701();
            return;
        }
        // Too short to reach column 23: at most nine digits, left-aligned.
        line.Dec(NextTime() % 1000000000u, 1, ' ');
    }
    void NoFields701(std::uint16_t type, int) {
        Head701(type);
        Dash701();
    }
    // Dash form, or the bare type code of four characters, which reads as untimed.
    void DashFormOrBare(std::uint16_t type, int variant) {
        if (variant == 2) {
            Type(type); // four characters only: no time
            return;
        }
        DashForm(type, variant);
    }
    void V701LineByte(std::uint16_t type, int variant) {
        const std::uint32_t length = Length(variant == 0 ? 1 : 2);
        Head701(type);
        Time701();
        Sp();
        H4(length);
        Sp();
        H2(random.Byte());
        Sp();
        H2(length == 2 ? random.Byte() : 0);
    }
    void V701Baud(std::uint16_t type, int variant) {
        static constexpr std::array<std::uint32_t, 4> kFormats = {6, 0, 17, 25};
        Head701(type);
        if (variant % 2 == 0)
            Time701();
        else
            Dash701();
        Sp();
        line.Dec(Baud(variant), 1, ' ');
        Sp();
        line.Dec(type == 0x0030 ? kFormats[variant] : random.Below(16), 1, ' ');
    }
    void V701PriorityFrame(std::uint16_t type, int variant) {
        Head701(type);
        Time701();
        Sp();
        H4(random.OneIn(2) ? 0x68 : 0xC1);
        Sp();
        H4(0xF1);
        Sp();
        H4(random.OneIn(2) ? 0x10 : 0x33);
        Sp();
        H4(Length(variant == 0 ? 19 : 6));
        GroupedBytes({3, 5, 5, 6});
    }
    void V701AddressedFrame(std::uint16_t type, int variant) {
        Head701(type);
        Time701();
        Sp();
        H4(random.OneIn(2) ? 0x00F1 : 0x12F1);
        Sp();
        H4(random.OneIn(2) ? 0x0010 : 0x0233);
        Sp();
        H4(Length(variant == 0 ? 12 : 19));
        GroupedBytes({3, 5, 5, 6});
    }
    // Identifier, time and length in fixed columns 5, 14 and 25; data from column 30.
    void FlexFrame(std::uint16_t type, int variant) {
        const std::uint32_t count = variant == 0 ? 8 : 1 + random.Below(16);
        const bool savedCase = lowerCase;
        lowerCase = variant == 1;
        Type(type);
        Sp();
        line.HexBlankPadded(1 + random.Below(2047), 8);
        Sp();
        Time701();
        Sp();
        line.Dec(Length(count), 4, ' ');
        Sp();
        FixedColumnBytes(static_cast<int>(count));
        lowerCase = savedCase;
    }
    // Channel letter at 5, slot at 7, identifier at 10, time at 19, length at 30, data at 35.
    void FlexFrameSlot(std::uint16_t type, int variant) {
        const std::uint32_t count = variant == 0 ? 8 : 1 + random.Below(16);
        Type(type);
        Sp();
        line.Char(variant == 0 ? 'A' : 'B');
        Sp();
        line.Dec(random.Below(64), 2, '0');
        Sp();
        line.HexBlankPadded(1 + random.Below(2047), 8);
        Sp();
        Time701();
        Sp();
        line.Dec(Length(count), 4, ' ');
        Sp();
        FixedColumnBytes(static_cast<int>(count));
    }
    void IdentifiedEvent(std::uint16_t type, int) {
        Type(type);
        Sp();
        line.HexBlankPadded(StandardId(), 8);
        Sp();
        Time701();
    }
    void V701CanFrame(std::uint16_t type, int variant) {
        const bool extended = type == 0x5800 || type == 0x6800;
        std::uint32_t length = variant == 0 ? 8 : random.Below(8);
        if (options.mix == RecordMix::Traffic)
            length = random.OneIn(8) ? random.Below(8) : 8;
        Type(type);
        Sp();
        line.HexBlankPadded(extended ? ExtendedId() : StandardId(), 8);
        Sp();
        Time701();
        Sp();
        line.Dec(Length(length), 4, '0');
        Sp();
        DataBytes(8);
    }

    // ---- choosing records ------------------------------------------------------------------
    void BuildFromTemplate(const Template& t, int variant) {
        (this->*t.build)(t.type, variant);
    }
    const Template* FindTemplate(std::uint16_t type) const {
        for (const auto& t : Templates())
            if (t.type == type)
                return &t;
        return nullptr;
    }
    void BuildType(std::uint16_t type, int variant) { BuildFromTemplate(*FindTemplate(type), variant); }

    // A bus log: about 97 % frames, the rest bus events and now and then a PC time stamp.
    void BuildTrafficRecord() {
        const std::uint32_t roll = random.Below(1000);
        if (roll >= 30) {
            static constexpr std::array<std::uint16_t, 8> kFrames = {0x5000, 0x5000, 0x5000, 0x6000,
                                                                   0x6000, 0x6000, 0x5800, 0x6800};
            BuildType(kFrames[random.Below(kFrames.size())], 0);
            return;
        }
        if (roll == 0) {
            BuildType(0xFF07, 0);
            return;
        }
        static constexpr std::array<std::uint16_t, 6> kEvents = {0x4401, 0x4401, 0x4406, 0x4403, 0x4404, 0x4405};
        BuildType(kEvents[random.Below(kEvents.size())], 0);
    }
    void BuildStreamRecord() {
        line.Clear();
        lowerCase = options.mix == RecordMix::All && random.OneIn(4);
        if (options.mix == RecordMix::Traffic) {
            BuildTrafficRecord();
            return;
        }
        const auto& table = Templates();
        std::uint16_t pick;
        if (options.mix == RecordMix::All) {
            // Every type once per block, in a new order each block.
            if (blockPosition == 0)
                for (std::size_t i = mixTemplates.size(); i > 1; --i)
                    std::swap(mixTemplates[i - 1], mixTemplates[random.Below(static_cast<std::uint32_t>(i))]);
            pick = mixTemplates[blockPosition];
            blockPosition = (blockPosition + 1) % mixTemplates.size();
        } else {
            pick = mixTemplates[random.Below(static_cast<std::uint32_t>(mixTemplates.size()))];
        }
        const Template& t = table[pick];
        BuildFromTemplate(t, static_cast<int>(random.Below(t.streamVariants)));
    }

    std::vector<std::string> AllTypeLines() {
        listMode = true;
        bigGapOneIn = 5;
        std::vector<std::string> lines;
        int lineNumber = 0;
        for (const auto& t : Templates())
            for (int variant = 0; variant < t.variants; ++variant) {
                line.Clear();
                lowerCase = ++lineNumber % 3 == 0;
                BuildFromTemplate(t, variant);
                lines.push_back(line.Str());
            }
        listMode = false;
        return lines;
    }

    // ---- hostile lines ------------------------------------------------------------------------
    void EnableHostileKinds() {
        const HostileExtras& h = options.hostile;
        if (h.emptyLines)
            hostileKinds.push_back(Hostile::Empty);
        if (h.digitOneLines)
            hostileKinds.push_back(Hostile::DigitOne);
        if (h.bracketLines)
            hostileKinds.push_back(Hostile::Bracket);
        if (h.longLines)
            hostileKinds.push_back(Hostile::Long);
        if (h.overlongLengths)
            hostileKinds.push_back(Hostile::Overlong);
        if (h.binaryGarbage) {
            hostileKinds.push_back(Hostile::GarbageLine);
            hostileKinds.push_back(Hostile::GarbageRecord);
        }
    }
    // Bytes of every value but the line ends.
    void GarbageBytes(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            char c = static_cast<char>(random.Byte());
            if (c == '\r' || c == '\n')
                c = '\x7F';
            line.Char(c);
        }
    }
    // Builds the next hostile line; true when it is a record line.
    bool BuildHostileLine() {
        const Hostile kind = hostileKinds[hostileNext];
        hostileNext = (hostileNext + 1) % hostileKinds.size();
        line.Clear();
        lowerCase = false;
        switch (kind) {
        case Hostile::Empty:
            return false;
        case Hostile::DigitOne:
            line.Text("1000 00001234 no record starts with a one");
            return false;
        case Hostile::Bracket:
            line.Text("[Comment] no record starts with a bracket");
            return false;
        case Hostile::Long:
            BuildType(legacy ? 0x5000 : 0x0038, 0);
            while (line.Str().size() < kLongLine) {
                Sp();
                H2(random.Byte());
            }
            line.Mutable().resize(kLongLine);
            return true;
        case Hostile::Overlong:
            BuildOverlong();
            return true;
        case Hostile::GarbageLine:
            line.Char(static_cast<char>(0x80 | random.Byte()));
            GarbageBytes(20 + random.Below(100));
            return false;
        case Hostile::GarbageRecord:
            Type(legacy ? 0x5000 : 0x0034);
            Sp();
            GarbageBytes(30 + random.Below(170));
            return true;
        }
        return false;
    }
    void BuildOverlong() {
        static constexpr std::array<std::uint16_t, 4> kLegacy = {0x5000, 0x0034, 0x0020, 0x8023};
        static constexpr std::array<std::uint16_t, 4> kV701 = {0x0038, 0x5000, 0x0034, 0x0090};
        const std::uint16_t type = (legacy ? kLegacy : kV701)[overlongNext++ % 4];
        const bool decimal = !legacy && type != 0x0034;
        // The widest value each length field can hold.
        lengthOverride = type == 0x0020 ? 0xFFu : (decimal ? 9999u : 0xFFFFu);
        BuildType(type, 0);
        lengthOverride.reset();
    }

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

// Unknown types are listed under 0099; their builder also writes 7ABC and F123.
const std::vector<ClassicTraceGenerator::State::Template>& ClassicTraceGenerator::State::LegacyTemplates() {
    using S = State;
    constexpr std::uint8_t C = GroupCan, K = GroupKLine, E = GroupEvent, O = GroupOther;
    static const std::vector<Template> table = {
        {0x0000, &S::LegacyTimeOnly, E, 1, 1},
        {0x0003, &S::LegacyLineByte, K, 2, 2},
        {0x0004, &S::LegacyLineByte, K, 2, 2},
        {0x0005, &S::LegacyTimeOnly, E, 1, 1},
        {0x0006, &S::LegacyTimeOnly, E, 1, 1},
        {0x0008, &S::LegacyLineByte, K, 3, 3},
        {0x000A, &S::LegacyLineByte, K, 3, 3},
        {0x000F, &S::LegacyTimeOnly, E, 1, 1},
        {0x0020, &S::LegacyCanWithWord, C, 6, 6},
        {0x0021, &S::LegacyCanWithWord, C, 6, 6},
        {0x8012, &S::LegacyCanPacked, C, 6, 6},
        {0x8013, &S::LegacyCanPacked, C, 6, 6},
        {0x0022, &S::LegacyCanState, E, 8, 8},
        {0x0030, &S::LegacyBaudWithFormat, E | K, 4, 4},
        {0x8022, &S::LegacyBaudWithoutFormat, E | K, 1, 1},
        {0x0031, &S::LegacyBusLevel, E, 2, 2},
        {0x0032, &S::LegacyBusLevel, E, 2, 2},
        {0x0033, &S::LegacyTimeOnly, E, 1, 1},
        {0x0034, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0035, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0036, &S::LegacyPriorityFrame, K, 3, 3},
        {0x0037, &S::LegacyByteBlock9, K, 2, 2},
        {0x0080, &S::LegacyTimeOnly, E, 1, 1},
        {0x00FE, &S::LegacyTimeOnly, E, 1, 1},
        {0x00FF, &S::LegacyTimeOnly, E, 1, 1},
        {0x4400, &S::LegacyChannelEvent, E, 1, 1},
        {0x4401, &S::LegacyChannelEvent, E, 1, 1},
        {0x4402, &S::LegacyChannelEvent, E, 1, 1},
        {0x4403, &S::LegacyChannelEvent, E, 1, 1},
        {0x4404, &S::LegacyChannelEvent, E, 1, 1},
        {0x4405, &S::LegacyChannelEvent, E, 1, 1},
        {0x4406, &S::LegacyChannelEvent, E, 1, 1},
        {0x4407, &S::LegacyChannelEvent, E, 1, 1},
        {0x4408, &S::LegacyChannelEvent, E, 1, 1},
        {0x4409, &S::LegacyChannelEvent, E, 1, 1},
        {0x5000, &S::LegacyCanFrame, C, 2, 2},
        {0x5800, &S::LegacyCanFrame, C, 2, 2},
        {0x6000, &S::LegacyCanFrame, C, 2, 2},
        {0x6800, &S::LegacyCanFrame, C, 2, 2},
        {0x8000, &S::LegacyTimeOnly, E, 1, 1},
        {0x8001, &S::LegacyTimeOnly, E, 1, 1},
        {0x8002, &S::LegacyLineByte, K, 3, 3},
        {0x8003, &S::LegacyLineByte, K, 3, 3},
        {0x8004, &S::LegacyTimeOnly, E, 1, 1},
        {0x8005, &S::LegacyTimeOnly, E, 1, 1},
        {0x800E, &S::LegacyTimeOnly, E, 1, 1},
        {0x800F, &S::LegacyTimeOnly, E, 1, 1},
        {0x801E, &S::LegacyTimeOnly, E, 1, 1},
        {0x801F, &S::LegacyTimeOnly, E, 1, 1},
        {0x8020, &S::LegacyTimeOnly, E, 1, 1},
        {0x8021, &S::LegacyTimeOnly, E, 1, 1},
        {0x8023, &S::LegacyByteBlock8, K, 2, 2},
        {0x8024, &S::LegacyByteBlock8, K, 2, 2},
        {0x8025, &S::LegacyTimeOnly, E, 1, 1},
        {0x8026, &S::LegacyTimeOnly, E, 1, 1},
        {0xFF00, &S::LegacyNoFields, E, 1, 1},
        {0xFF01, &S::LegacyNoFields, E, 1, 1},
        {0xFF02, &S::LegacyNoFields, E, 1, 1},
        {0xFF03, &S::LegacyNoFields, E, 1, 1},
        {0xFF04, &S::LegacyNoFields, E, 1, 1},
        {0xFF05, &S::LegacyNoFields, E, 1, 1},
        {0xFF06, &S::LegacyNoFields, E, 1, 1},
        {0xFF07, &S::LegacyPcTime, E, 2, 2},
        {0xFF08, &S::MarkRecord, E, 3, 2},
        {0x0099, &S::UnknownType, O, 3, 3},
    };
    return table;
}

const std::vector<ClassicTraceGenerator::State::Template>& ClassicTraceGenerator::State::V701Templates() {
    using S = State;
    constexpr std::uint8_t C = GroupCan, K = GroupKLine, E = GroupEvent, O = GroupOther;
    static const std::vector<Template> table = {
        {0x0000, &S::DashForm, E, 2, 2},
        {0x0003, &S::V701LineByte, K, 2, 2},
        {0x0004, &S::V701LineByte, K, 2, 2},
        {0x0005, &S::ColumnTime, E, 2, 1},
        {0x0006, &S::ColumnTime, E, 2, 1},
        {0x0008, &S::ColumnTime, E, 2, 1},
        {0x000A, &S::ColumnTime, E, 2, 1},
        {0x000B, &S::ColumnTime, E, 2, 1},
        {0x000C, &S::ColumnTime, E, 2, 1},
        {0x000D, &S::ColumnTime, E, 2, 1},
        {0x000E, &S::ColumnTime, E, 2, 1},
        {0x000F, &S::NoFields701, E, 1, 1},
        {0x0030, &S::V701Baud, E | K, 4, 4},
        {0x0031, &S::ColumnTime, E, 2, 1},
        {0x0032, &S::ColumnTime, E, 2, 1},
        {0x0033, &S::ColumnTime, E, 2, 1},
        {0x0034, &S::V701PriorityFrame, K, 2, 2},
        {0x0035, &S::V701PriorityFrame, K, 2, 2},
        {0x8013, &S::V701PriorityFrame, K, 2, 2},
        {0x0038, &S::FlexFrame, O, 2, 2},
        {0x0039, &S::FlexFrame, O, 2, 2},
        {0x0040, &S::ColumnTime, E, 2, 1},
        {0x0041, &S::ColumnTime, E, 2, 1},
        {0x0050, &S::V701AddressedFrame, K, 2, 2},
        {0x0051, &S::V701AddressedFrame, K, 2, 2},
        {0x0080, &S::NoFields701, E, 1, 1},
        {0x0090, &S::FlexFrameSlot, O, 2, 2},
        {0x0091, &S::FlexFrameSlot, O, 2, 2},
        {0x00FC, &S::NoFields701, E, 1, 1},
        {0x00FD, &S::NoFields701, E, 1, 1},
        {0x00FE, &S::NoFields701, E, 1, 1},
        {0x00FF, &S::DashFormOrBare, E, 3, 3},
        {0x0400, &S::DashForm, E, 2, 2},
        {0x4400, &S::DashForm, E, 2, 2},
        {0x400A, &S::V701Baud, E, 2, 2},
        {0x4401, &S::DashForm, E, 2, 2},
        {0x4402, &S::DashForm, E, 2, 2},
        {0x4403, &S::DashForm, E, 2, 2},
        {0x4404, &S::DashForm, E, 2, 2},
        {0x4405, &S::DashForm, E, 2, 2},
        {0x4406, &S::DashForm, E, 2, 2},
        {0x4407, &S::DashForm, E, 2, 2},
        {0x4408, &S::DashForm, E, 2, 2},
        {0x4409, &S::DashForm, E, 2, 2},
        {0x440B, &S::ColumnTime, E, 2, 1},
        {0x440C, &S::NoFields701, E, 1, 1},
        {0x440D, &S::IdentifiedEvent, E, 1, 1},
        {0x5000, &S::V701CanFrame, C, 2, 2},
        {0x5800, &S::V701CanFrame, C, 2, 2},
        {0x6000, &S::V701CanFrame, C, 2, 2},
        {0x6800, &S::V701CanFrame, C, 2, 2},
        {0x5701, &S::DashForm, E, 2, 2},
        {0x5702, &S::DashForm, E, 2, 2},
        {0x5703, &S::DashForm, E, 2, 2},
        {0x5704, &S::DashForm, E, 2, 2},
        {0x5705, &S::DashForm, E, 2, 2},
        {0x8004, &S::NoFields701, E, 1, 1},
        {0x8005, &S::NoFields701, E, 1, 1},
        {0x800E, &S::NoFields701, E, 1, 1},
        {0x8020, &S::NoFields701, E, 1, 1},
        {0x8021, &S::NoFields701, E, 1, 1},
        {0xFF01, &S::MarkRecord, E, 1, 1},
        {0xFF02, &S::MarkRecord, E, 1, 1},
        {0xFF03, &S::MarkRecord, E, 1, 1},
        {0xFF04, &S::MarkRecord, E, 1, 1},
        {0xFF05, &S::MarkRecord, E, 1, 1},
        {0xFF06, &S::MarkRecord, E, 1, 1},
        {0xFF07, &S::MarkRecord, E, 2, 2},
        {0xFF08, &S::MarkRecord, E, 3, 2},
        {0x0099, &S::UnknownType, O, 2, 2},
    };
    return table;
}

// ---- writing a whole file -----------------------------------------------------------------

namespace {

// Buffers the output, counts bytes, and holds back each line's ending until the next
// line, so that the very last line can go without one.
class TraceSink {
public:
    TraceSink(std::ostream& out, const ClassicTraceOptions& options)
        : m_out(out), m_eol(options.lineEnding == LineEnding::CrLf ? "\r\n" : "\n"),
          m_lastWithoutEnding(options.lastLineWithoutEnding) {
        m_buffer.reserve(kFlushBytes + 1024);
    }
    // Returns the offset of the line's first byte.
    std::uint64_t Line(std::string_view text) {
        if (m_pendingEnding)
            Put(m_eol);
        const std::uint64_t offset = m_bytes;
        Put(text);
        m_pendingEnding = true;
        return offset;
    }
    void Finish() {
        if (m_pendingEnding && !m_lastWithoutEnding)
            Put(m_eol);
        m_pendingEnding = false;
        Flush();
    }
    // Bytes so far, counting the ending still held back.
    std::uint64_t Bytes() const { return m_bytes + (m_pendingEnding ? m_eol.size() : 0); }
    std::uint64_t WrittenBytes() const { return m_bytes; }

private:
    void Put(std::string_view text) {
        m_buffer.append(text);
        m_bytes += text.size();
        if (m_buffer.size() >= kFlushBytes)
            Flush();
    }
    void Flush() {
        m_out.write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
        m_buffer.clear();
    }
    std::ostream& m_out;
    std::string_view m_eol;
    bool m_lastWithoutEnding;
    bool m_pendingEnding = false;
    std::string m_buffer;
    std::uint64_t m_bytes = 0;
};

void WriteHead(TraceSink& sink, const ClassicTraceOptions& o) {
    if (!o.writeDescription)
        return;
    sink.Line("[Description]");
    auto key = [&sink](const char* name, const std::optional<std::string>& value) {
        if (value)
            sink.Line(std::string(name) + "=" + *value);
    };
    key("Title", o.title);
    if (!o.schema.empty())
        sink.Line("Schema=" + o.schema);
    key("Creator", o.creator);
    key("ProductVersion", o.productVersion);
    key("InterfaceBoard", o.interfaceBoard);
    key("Date", o.date);
    key("Time", o.time);
    for (const auto& line : o.extraHeadLines)
        sink.Line(line);
}

// At the end the section looks as the viewer appends it; inside the records it must end
// with an empty line, where a history reader stops and the record walk goes on.
void WriteHistory(TraceSink& sink, const ClassicTraceOptions& o, bool atEnd) {
    sink.Line("");
    if (atEnd)
        sink.Line("");
    sink.Line("[AnalyzerHistory]");
    for (std::uint32_t i = 0; i < o.historyPaddingLines; ++i)
        sink.Line("Note" + std::to_string(i) + "=padding");
    for (const auto& entry : o.history) {
        std::string text = "CANFilter=";
        if (entry.flag != 0) {
            text += entry.flag;
            text += ':';
        }
        sink.Line(text + entry.path);
    }
    if (!atEnd)
        sink.Line("");
}

} // namespace

ClassicTraceGenerator::ClassicTraceGenerator(const ClassicTraceOptions& options)
    : m_state(std::make_unique<State>(options)) {}

ClassicTraceGenerator::~ClassicTraceGenerator() = default;

std::vector<std::string> ClassicTraceGenerator::AllTypeLines() { return m_state->AllTypeLines(); }

ClassicTraceSummary ClassicTraceGenerator::Write(std::ostream& out) {
    State& s = *m_state;
    const ClassicTraceOptions& o = s.options;
    TraceSink sink(out, o);
    ClassicTraceSummary summary;
    WriteHead(sink, o);
    sink.Line("[TraceData]");

    const std::uint64_t headBytes = sink.Bytes();
    const bool bySize = o.targetBytes != 0;
    const bool hostile = !s.hostileKinds.empty();
    const std::uint32_t every = o.hostile.every == 0 ? 1 : o.hostile.every;
    bool historyWritten = o.historyPlacement != HistoryPlacement::InTraceData;
    auto more = [&] { return bySize ? sink.Bytes() < o.targetBytes : summary.records < o.records; };
    const std::uint64_t recordBytesWanted = o.targetBytes > headBytes ? o.targetBytes - headBytes : 0;
    auto halfWay = [&] {
        return bySize ? sink.Bytes() - headBytes >= recordBytesWanted / 2 : summary.records >= o.records / 2;
    };
    auto emitRecord = [&] {
        summary.lastRecordOffset = sink.Line(s.line.Str());
        summary.lastRecordLine = s.line.Str();
        ++summary.records;
    };

    while (more()) {
        if (!historyWritten && halfWay()) {
            WriteHistory(sink, o, false);
            historyWritten = true;
        }
        if (hostile && (summary.records + 1) % every == 0) {
            const bool isRecord = s.BuildHostileLine();
            if (isRecord) {
                emitRecord();
                continue;
            }
            sink.Line(s.line.Str());
        }
        s.BuildStreamRecord();
        emitRecord();
    }
    if (!historyWritten)
        WriteHistory(sink, o, false);
    if (o.historyPlacement == HistoryPlacement::AtEnd)
        WriteHistory(sink, o, true);
    sink.Finish();
    summary.bytes = sink.WrittenBytes();
    return summary;
}

std::string MakeClassicTrace(const ClassicTraceOptions& options) {
    std::ostringstream out;
    WriteClassicTrace(out, options);
    return out.str();
}

void WriteClassicTrace(std::ostream& out, const ClassicTraceOptions& options) {
    WriteClassicTraceWithSummary(out, options);
}

ClassicTraceSummary WriteClassicTraceWithSummary(std::ostream& out, const ClassicTraceOptions& options) {
    ClassicTraceGenerator generator(options);
    return generator.Write(out);
}

std::vector<std::string> LegacyRecordLines(std::uint64_t seed) {
    ClassicTraceOptions options;
    options.schema = "601";
    options.seed = seed;
    options.format = LineFormat::Legacy;
    options.timeStyle = TimeStyle::Absolute;
    return ClassicTraceGenerator(options).AllTypeLines();
}

std::vector<std::string> V701RecordLines(std::uint64_t seed) {
    ClassicTraceOptions options;
    options.schema = "701";
    options.seed = seed;
    options.format = LineFormat::V701;
    options.timeStyle = TimeStyle::Absolute;
    return ClassicTraceGenerator(options).AllTypeLines();
}

std::string MakeCanFilterFile(const std::string& type, const std::vector<std::uint32_t>& identifiers,
                              FilterValueStyle style) {
    LineBuffer text;
    text.Text("[CAN]\r\nType=");
    text.Text(type);
    text.Text("\r\nNoOfEntries=");
    text.Hex(static_cast<std::uint32_t>(identifiers.size()), 1);
    text.Text("\r\n");
    for (std::size_t i = 0; i < identifiers.size(); ++i) {
        text.Hex(static_cast<std::uint32_t>(i + 1), 1);
        text.Char('=');
        if (style == FilterValueStyle::Prefixed)
            text.Text("0x");
        text.Hex(identifiers[i], 1);
        text.Text("\r\n");
    }
    return text.Str();
}

} // namespace zdtgen
