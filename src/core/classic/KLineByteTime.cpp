#include "classic/KLineByteTime.h"

#include "classic/CAnalyzerDoc.h"

#include <cctype>

void ChooseByteLength(KLineByteSettings& settings, std::uint32_t bits) {
    if (bits == 8 || bits == 7)
        settings.dataBits = bits;
}

std::optional<std::uint32_t> ParseBaudrate(const std::string& text) {
    std::size_t begin = text.find_first_not_of(" \t");
    const std::size_t end = text.find_last_not_of(" \t");
    if (begin == std::string::npos)
        return std::nullopt;
    if (text[begin] == '+')
        ++begin;
    if (begin > end)
        return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = begin; i <= end; ++i) {
        if (!std::isdigit(static_cast<unsigned char>(text[i])))
            return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(text[i] - '0');
        if (value > KLineByteSettings::MaxBaudrate)
            return std::nullopt;
    }
    return static_cast<std::uint32_t>(value);
}

zdt::UserMessage BaudrateRangeMessage() {
    return {"", "Please enter an integer between 0 and 16777215.", zdt::MessageIcon::Warning};
}

std::optional<std::uint32_t> KLineByteTime(const KLineByteSettings& settings) {
    if (settings.baudrate == 0)
        return std::nullopt;
    return static_cast<std::uint32_t>(ByteTimeMicros(settings.baudrate, settings.dataBits, settings.stopBits));
}

zdt::UserMessage BaudrateZeroMessage() {
    return {"", "A baud rate of 0 gives no byte time. Please enter a baud rate above 0.", zdt::MessageIcon::Warning};
}
