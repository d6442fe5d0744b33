#pragma once

#include "trace/IndexTimeReader.h"
#include "trace/NibbleTables.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// Which line types the index pass takes a time from and how, and a quick reader of the
// usual layouts that the walk inlines. ReadIndexLineFacts follows the same rules.
namespace indexline {

// Types whose time the legacy reader takes from the hexadecimal field behind the code.
constexpr bool IsHexTimeType(std::uint16_t type) {
    switch (type) {
    case 0x0000:
    case 0x0003:
    case 0x0004:
    case 0x0005:
    case 0x0006:
    case 0x0008:
    case 0x000A:
    case 0x000F:
    case 0x0020:
    case 0x0021:
    case 0x0022:
    case 0x0030:
    case 0x0031:
    case 0x0032:
    case 0x0033:
    case 0x0034:
    case 0x0035:
    case 0x0036:
    case 0x0037:
    case 0x0080:
    case 0x00FE:
    case 0x8000:
    case 0x8001:
    case 0x8002:
    case 0x8003:
    case 0x8004:
    case 0x8005:
    case 0x800E:
    case 0x800F:
    case 0x8012:
    case 0x8013:
    case 0x801E:
    case 0x801F:
    case 0x8020:
    case 0x8021:
    case 0x8022:
    case 0x8023:
    case 0x8024:
    case 0x8025:
    case 0x8026:
        return true;
    default:
        return false;
    }
}

// Types whose channel and time are the first and third blank-separated tokens.
constexpr bool IsTokenTimeType(std::uint16_t type) {
    return type == 0x5000 || type == 0x5800 || type == 0x6000 || type == 0x6800 || type == 0x440C ||
           (type >= 0x4400 && type <= 0x4407);
}

constexpr bool SetsIdentifierOnly(std::uint16_t type) {
    return type == 0x0020 || type == 0x0021 || type == 0x0022 || type == 0x8012 || type == 0x8013 || type == 0x8025 ||
           type == 0x8026;
}

constexpr bool IsFlexType(std::uint16_t type) {
    return type == 0x0038 || type == 0x0039 || type == 0x0090 || type == 0x0091;
}

constexpr bool IsSourceDestinationPriorityType(std::uint16_t type) {
    return type == 0x0034 || type == 0x0035 || type == 0x0036;
}

// What the index pass does with a type, as bits, for the quick reader: one table look-up
// instead of the switches above, whose branches the mixed record types of a trace defeat.
enum : std::uint8_t {
    KindHexTime = 1,
    KindTokenTime = 2,
    KindIdentifier = 4,
    KindSourceDestinationPriority = 8,
    KindFlex = 16,
};

constexpr std::uint8_t TypeKind(std::uint16_t type) {
    if (IsTokenTimeType(type))
        return KindTokenTime | KindIdentifier;
    if (IsHexTimeType(type))
        return static_cast<std::uint8_t>(KindHexTime | (SetsIdentifierOnly(type) ? KindIdentifier : 0) |
                                         (IsSourceDestinationPriorityType(type) ? KindSourceDestinationPriority : 0));
    return IsFlexType(type) ? KindFlex : 0;
}

// The kinds in two levels: the high byte picks a row of 256 low bytes. Few high bytes have
// any kind at all, so the table stays a few cache lines.
struct TypeKindTable {
    static constexpr unsigned MaxRows = 12;
    std::uint8_t rowOfHigh[256] = {};
    std::uint8_t rows[MaxRows][256] = {};
};

constexpr TypeKindTable MakeTypeKindTable() {
    TypeKindTable table;
    unsigned used = 1; // row 0: no kind
    for (unsigned high = 0; high < 256; ++high) {
        bool any = false;
        for (unsigned low = 0; low < 256; ++low)
            any = any || TypeKind(static_cast<std::uint16_t>(high << 8 | low)) != 0;
        if (!any)
            continue;
        if (used == TypeKindTable::MaxRows)
            throw "too many rows"; // not a constant expression: the build fails
        for (unsigned low = 0; low < 256; ++low)
            table.rows[used][low] = TypeKind(static_cast<std::uint16_t>(high << 8 | low));
        table.rowOfHigh[high] = static_cast<std::uint8_t>(used++);
    }
    return table;
}

inline constexpr TypeKindTable TypeKinds = MakeTypeKindTable();

// The kind of a line by its first four characters, which must be there.
inline std::uint8_t KindOfLine(const char* line) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(line);
    return TypeKinds.rows[TypeKinds.rowOfHigh[nibble::Byte(bytes[0], bytes[1])]][nibble::Byte(bytes[2], bytes[3])];
}

// How many of the eight bytes at `p` are hexadecimal digits of either case before the first
// that is not, and their value in `value`; all at once and without a branch.
inline unsigned LeadingHexDigits(const char* p, std::uint32_t& value) {
    std::uint64_t x;
    std::memcpy(&x, p, 8);
    constexpr std::uint64_t ones = 0x0101010101010101ull;
    constexpr std::uint64_t highBits = 0x8080808080808080ull;
    // Below 0x80, these sums carry into no neighbour and bit 7 tells the range. A byte from
    // 0x80 up is no digit; its carry only spoils bytes behind it, which do not count.
    const std::uint64_t lower = x | (0x20 * ones);
    const std::uint64_t digit = (x + 0x50 * ones) & ~(x + 0x46 * ones);          // 0x30..0x39
    const std::uint64_t letter = (lower + 0x1F * ones) & ~(lower + 0x19 * ones); // a..f, A..F
    const std::uint64_t isHex = (digit | letter) & ~x & highBits;
    const std::uint64_t stops = ~isHex & highBits;
    const unsigned count = stops == 0 ? 8u : static_cast<unsigned>(__builtin_ctzll(stops)) / 8;
    const std::uint64_t nibbles = ((x & (0x0F * ones)) + ((letter & highBits) >> 7) * 9) & (0x0F * ones);
    // The first character is the lowest byte and the highest nibble.
    std::uint64_t pairs = ((nibbles << 4) | (nibbles >> 8)) & 0x00FF00FF00FF00FFull;
    pairs = (pairs | (pairs >> 8)) & 0x0000FFFF0000FFFFull;
    const std::uint32_t all = __builtin_bswap32(static_cast<std::uint32_t>(pairs | (pairs >> 16)));
    value = count == 0 ? 0 : all >> (32 - 4 * count);
    return count;
}

// ReadIndexLineFacts for the usual layouts: false when the line is laid out otherwise, and
// the caller must ask ReadIndexLineFacts. It looks at the `length` bytes of `line` only, but
// loads 13 bytes from it even when it is shorter; it needs no zero behind the line.
// `facts` must come in default-constructed.
inline bool ReadFactsQuick(const char* line, std::size_t length, IndexLineFacts& facts) {
    if (length < 4)
        return false;
    const std::uint8_t kind = KindOfLine(line);
    if (kind & KindTokenTime) {
        facts = ReadTokenFields(length > 5 ? line + 5 : line + length, line + length);
        facts.channel = true;
    } else {
        // The field is read whatever the type, so that most lines take no branch on it. The
        // writers put eight digits there, or one and a blank (701); anything else, such as
        // blanks, a sign or "0x", is left to the general reader.
        std::uint32_t hex;
        const unsigned digits = LeadingHexDigits(line + 5, hex);
        const bool hexRead =
            (digits == 8 && length >= 13) | (digits > 0 && 5 + digits < length && line[5 + digits] == ' ');
        const bool hexTime = (kind & KindHexTime) != 0;
        if (hexTime && !hexRead)
            return false;
        facts.time = hexTime ? hex : 0;
    }
    facts.identifier = (kind & KindIdentifier) != 0;
    facts.sourceDestinationPriority = (kind & KindSourceDestinationPriority) != 0;
    facts.flex = (kind & KindFlex) != 0;
    return true;
}

} // namespace indexline
