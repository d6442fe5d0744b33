#pragma once

#include <cstdint>

namespace zdt {

// A row's place in a document's list, counted from 0. Signed like the list views' own
// row numbers, so that "no row" needs no second type; no list reaches 2^31 rows.
using RowIndex = std::int32_t;
// A number of rows.
using RowCount = std::int32_t;
inline constexpr RowIndex NoRow = -1;

// A byte position in a trace or swap file: 64-bit everywhere, as traces pass 4 GiB.
using FileOffset = std::uint64_t;

} // namespace zdt
