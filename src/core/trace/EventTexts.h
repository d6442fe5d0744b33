#pragma once

#include <cstdint>

// The fixed texts of classic event records: messages by event code, the mark texts by
// type code, and the baud-rate formats with their event codes.
namespace eventtexts {

// Shown for a code that has no text of its own.
inline constexpr const char* UnknownMessage = "Unknown message";

// The message of an event code, or null when the code has none.
const char* MessageText(std::uint32_t code);

// The mark text of a type code FF01..FF08, or null for any other type.
const char* MarkText(std::uint32_t typeCode);

// The event code a baud-rate format byte stands for; unknown formats give FormatUnknownCode.
std::uint32_t BaudFormatCode(std::uint32_t format);
inline constexpr std::uint32_t FormatUnknownCode = 0x50080014;

// For a baud-format event code, the part of its text that follows the baud rate
// (" Format 7N1" ...); null for any other code. The whole text is "Baudrate: <baud><suffix>".
const char* BaudFormatSuffix(std::uint32_t code);

} // namespace eventtexts
