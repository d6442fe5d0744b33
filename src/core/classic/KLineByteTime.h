#pragma once

#include "common/UserMessage.h"

#include <cstdint>
#include <optional>
#include <string>

// The line settings of the K-line style dialog, from which the byte time follows.
struct KLineByteSettings {
    static constexpr std::uint32_t MaxBaudrate = 16777215;
    enum Parity : std::uint32_t { None = 0, Odd = 1, Even = 2 };

    std::uint32_t baudrate = 10400;
    std::uint32_t dataBits = 8; // 8 or 7
    std::uint32_t parity = None;
    std::uint32_t stopBits = 1; // 1 or 2
};

// The byte length radios: 8 and 7 set the data bits; 9 has no effect on them.
void ChooseByteLength(KLineByteSettings& settings, std::uint32_t bits);

// The baud rate text of the dialog; nullopt unless it is a whole number from 0 to MaxBaudrate.
std::optional<std::uint32_t> ParseBaudrate(const std::string& text);

// The box shown when the baud rate text is no such number.
zdt::UserMessage BaudrateRangeMessage();

// The whole microseconds one byte takes (start bit, data bits, stop bits; parity is not
// counted), cut to an integer. A baud rate of 0 has no byte time: nullopt, and the
// dialog refuses it with BaudrateZeroMessage instead of dividing by zero.
std::optional<std::uint32_t> KLineByteTime(const KLineByteSettings& settings);
zdt::UserMessage BaudrateZeroMessage();
