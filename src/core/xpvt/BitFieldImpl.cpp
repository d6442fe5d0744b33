#include "xpvt/BitFieldImpl.h"

namespace ZDTAnalyzer::Xpvt {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

constexpr char UpperDigits[] = "0123456789ABCDEF";

} // namespace

void BitFieldImpl::init(const char* text) {
    // Called once per message row; clear() keeps the capacity, so a trace of many
    // messages allocates only for its longest one.
    m_bytes.clear();
    int high = -1;
    for (const char* p = text; p != nullptr && *p != '\0'; ++p) {
        const int digit = hexValue(*p);
        if (digit < 0)
            continue;
        if (high < 0) {
            high = digit;
        } else {
            m_bytes.push_back(static_cast<unsigned char>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0)
        m_bytes.push_back(static_cast<unsigned char>(high));
}

std::size_t BitFieldImpl::formatBytes(char* destination, unsigned start, unsigned count, char separator) const {
    char* out = destination;
    const std::size_t length = m_bytes.size();
    for (std::size_t i = start; i < length && i - start < count; ++i) {
        if (i != start)
            *out++ = separator;
        *out++ = UpperDigits[m_bytes[i] >> 4];
        *out++ = UpperDigits[m_bytes[i] & 0x0F];
    }
    *out = '\0';
    return static_cast<std::size_t>(out - destination);
}

void BitFieldImpl::formatLine(std::string& line, unsigned start) const {
    char group[3 * BytesPerGroup + 1];
    line.assign(group, formatBytes(group, start, BytesPerGroup, ' '));
    if (static_cast<std::size_t>(start) + BytesPerGroup >= m_bytes.size())
        return;
    line.resize(SecondGroupColumn, ' ');
    line.append(group, formatBytes(group, start + BytesPerGroup, BytesPerGroup, ' '));
}

} // namespace ZDTAnalyzer::Xpvt
