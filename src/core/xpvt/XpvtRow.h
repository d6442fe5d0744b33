#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace ZDTAnalyzer::Xpvt {

// Colour digits of a row: the last character of its flags field.
enum class RowKind : char { ResponseParameter = '0', Primitive = '1', Plain = '2', Failure = '3' };

inline constexpr char FieldEnd = '\x01';

// A stored row: the flags "00<kind>", then each field, every one closed by 0x01.
inline void makeRow(std::string& row, RowKind kind, std::initializer_list<std::string_view> fields) {
    row.clear();
    row += '0';
    row += '0';
    row += static_cast<char>(kind);
    row += FieldEnd;
    for (std::string_view field : fields) {
        row.append(field);
        row += FieldEnd;
    }
}

} // namespace ZDTAnalyzer::Xpvt
