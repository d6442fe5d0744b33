#include "trace/CTraceItemI.h"

#include "trace/EventTexts.h"
#include "trace/ScanFormat.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// Payload layout by kind: byte offsets into the 52-byte overlay, packed, words little-endian.
namespace event {
constexpr std::size_t Code = 0, Severity = 4;
}
namespace pctime {
constexpr std::size_t Year = 0, Month = 2, Day = 4, Hour = 6, Minute = 8, Second = 10;
constexpr std::size_t MarkTextRoom = 32; // 31 characters and the terminator
} // namespace pctime
namespace can {
constexpr std::size_t Identifier = 0, Extended = 4, Direction = 5, Length = 6, Data = 7;
}
namespace baud {
constexpr std::size_t Baud = 0, Second = 4;
}
namespace linebyte {
constexpr std::size_t Direction = 0, Length = 1, Value = 2;
}
namespace priority {
constexpr std::size_t Priority = 0, Source = 1, Destination = 2, Direction = 3, Length = 4, Data = 5;
}
namespace addressed {
constexpr std::size_t Source = 0, Destination = 4, Direction = 8, Length = 9, Data = 10;
constexpr std::size_t Copied = 17;
} // namespace addressed
namespace block {
constexpr std::size_t Direction = 0, Length = 1, Data = 2;
}
namespace flex {
constexpr std::size_t Identifier = 0, FrameFlag = 4, ChannelLetter = 5, Slot = 6, Length = 7, Data = 8;
}

bool HasFrameData(std::uint8_t kind) {
    switch (kind) {
    case KindCanFrame:
    case KindLineByte:
    case KindPriorityFrame:
    case KindAddressedFrame:
    case KindByteBlock:
    case KindFlexFrame:
        return true;
    default:
        return false;
    }
}

// Offsets of the direction, length and first data byte of each kind that has data.
struct DataFields {
    std::size_t direction;
    std::size_t length;
    std::size_t data;
};

DataFields FieldsOf(std::uint8_t kind) {
    switch (kind) {
    case KindCanFrame:
        return {can::Direction, can::Length, can::Data};
    case KindLineByte:
        return {linebyte::Direction, linebyte::Length, linebyte::Value};
    case KindPriorityFrame:
        return {priority::Direction, priority::Length, priority::Data};
    case KindAddressedFrame:
        return {addressed::Direction, addressed::Length, addressed::Data};
    case KindByteBlock:
        return {block::Direction, block::Length, block::Data};
    default:
        return {flex::FrameFlag, flex::Length, flex::Data};
    }
}

std::string DecimalText(std::uint32_t value) {
    // Printed as a signed int, as "%d" of the stored word would print it.
    return std::to_string(static_cast<std::int32_t>(value));
}

} // namespace

CTraceItemI::CTraceItemI() = default;

std::size_t CTraceItemI::DataCapacity(std::uint8_t kind) {
    switch (kind) {
    case KindCanFrame:
        return PayloadSize - can::Data;
    case KindLineByte:
        return 1;
    case KindPriorityFrame:
        return PayloadSize - priority::Data;
    case KindAddressedFrame:
        return addressed::Copied;
    case KindByteBlock:
        return PayloadSize - block::Data;
    case KindFlexFrame:
        return PayloadSize - flex::Data;
    default:
        return 0;
    }
}

// ---- private helpers -------------------------------------------------------------

void CTraceItemI::Reset() {
    m_typeFull = 0;
    m_typeCode = 0;
    m_kind = KindNone;
    m_payload.fill(0);
    m_channel = 0;
    m_time = 0;
    m_baudText.clear();
    m_timeValid = 0;
}

bool CTraceItemI::BeginRecord(const ScanLine& line) {
    Reset();
    unsigned typeCode = 0;
    if (!ScanHexValue(line.text, 4, typeCode))
        return false;
    m_typeCode = static_cast<std::uint16_t>(typeCode);
    m_typeFull = m_typeCode;
    return true;
}

void CTraceItemI::BeginKind(std::uint8_t kind) {
    m_payload.fill(0);
    m_kind = kind;
}

void CTraceItemI::StoreTime(std::uint32_t time) {
    m_time = time;
    m_timeValid = 1;
}

void CTraceItemI::PutWord(std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        m_payload[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t CTraceItemI::Word(std::size_t offset) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= static_cast<std::uint32_t>(m_payload[offset + i]) << (8 * i);
    return value;
}

std::uint8_t CTraceItemI::PutData(std::size_t offset, std::uint8_t length, const std::uint8_t* data) {
    const std::size_t stored = std::min<std::size_t>(length, DataCapacity(m_kind));
    if (data != nullptr && stored > 0)
        std::memcpy(m_payload.data() + offset, data, stored);
    return static_cast<std::uint8_t>(stored);
}

// ---- queries ---------------------------------------------------------------------

std::uint16_t CTraceItemI::GetTypeCode() const {
    return m_typeCode;
}

bool CTraceItemI::HasMarkText() const {
    return m_payload[MarkTextOffset] != 0;
}

int CTraceItemI::GetMarkText(std::string& text) const {
    const char* mark = reinterpret_cast<const char*>(m_payload.data() + MarkTextOffset);
    // Bounded by the payload: a kind other than 2 need not hold a terminator there.
    text.assign(mark, strnlen(mark, PayloadSize - MarkTextOffset));
    return 0;
}

bool CTraceItemI::IsRecognised() const {
    return m_kind >= KindEvent && m_kind <= KindByteBlock;
}

int CTraceItemI::GetKind(std::uint8_t& kind) const {
    kind = (m_kind <= KindByteBlock || m_kind == KindFlexFrame) ? m_kind : static_cast<std::uint8_t>(KindNone);
    return 0;
}

bool CTraceItemI::HasChannel() const {
    if (m_kind == KindCanFrame)
        return true;
    return m_kind == KindEvent && (Word(event::Code) & 0x80000000u) != 0;
}

int CTraceItemI::GetChannel(std::uint8_t& channel) const {
    channel = m_channel;
    return 0;
}

bool CTraceItemI::HasTime() const {
    switch (m_kind) {
    case KindEvent:
    case KindBaudrate:
    case KindBaudrateFormat:
        return m_timeValid != 0;
    case KindPcTime:
        return false;
    default:
        return true;
    }
}

int CTraceItemI::GetTime(std::uint32_t& time) const {
    time = m_time;
    return 0;
}

bool CTraceItemI::IsEvent() const {
    return m_kind == KindEvent || m_kind == KindPcTime || m_kind == KindBaudrate || m_kind == KindBaudrateFormat;
}

int CTraceItemI::GetEventCode(std::uint32_t& code) const {
    code = Word(event::Code);
    return 0;
}

int CTraceItemI::GetEventText(std::string& text) const {
    if ((m_typeFull & 0xFF00) == 0xFF00) {
        // Marks are named by their type; a type of the range without a name keeps the text.
        if (const char* mark = eventtexts::MarkText(m_typeFull))
            text = mark;
        return 0;
    }
    const std::uint32_t code = Word(event::Code);
    if (const char* message = eventtexts::MessageText(code))
        text = message;
    else if (const char* suffix = eventtexts::BaudFormatSuffix(code))
        text = "Baudrate: " + m_baudText + suffix;
    else
        text = eventtexts::UnknownMessage;
    if (m_kind == KindBaudrate)
        text = "Baudrate: " + DecimalText(Word(baud::Baud));
    return 0;
}

bool CTraceItemI::IsPcTime() const {
    return m_kind == KindPcTime;
}

int CTraceItemI::GetPcTimeText(std::string& text) const {
    if (m_kind != KindPcTime)
        return 0;
    auto field = [this](std::size_t offset) {
        return static_cast<int>(m_payload[offset] | (m_payload[offset + 1] << 8));
    };
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%04d   %02d:%02d:%02d", field(pctime::Day), field(pctime::Month),
                  field(pctime::Year), field(pctime::Hour), field(pctime::Minute), field(pctime::Second));
    text = buffer;
    return 0;
}

bool CTraceItemI::HasIdentifier() const {
    return m_kind == KindCanFrame || m_kind == KindFlexFrame;
}

int CTraceItemI::GetIdentifier(std::uint32_t& identifier) const {
    if (HasIdentifier())
        identifier = Word(m_kind == KindCanFrame ? can::Identifier : flex::Identifier);
    return 0;
}

int CTraceItemI::GetExtendedFlag(std::uint8_t& extended) const {
    extended = m_kind == KindCanFrame ? m_payload[can::Extended] : 0;
    return 0;
}

bool CTraceItemI::HasDirection() const {
    return HasFrameData(m_kind);
}

int CTraceItemI::GetDirection(std::uint8_t& direction) const {
    if (HasFrameData(m_kind))
        direction = m_payload[FieldsOf(m_kind).direction];
    return 0;
}

bool CTraceItemI::HasPriority() const {
    return m_kind == KindPriorityFrame;
}

int CTraceItemI::GetPriority(std::uint32_t& value) const {
    if (m_kind == KindPriorityFrame)
        value = m_payload[priority::Priority];
    return 0;
}

bool CTraceItemI::HasSource() const {
    return m_kind == KindPriorityFrame || m_kind == KindAddressedFrame;
}

int CTraceItemI::GetSource(std::uint32_t& source) const {
    if (m_kind == KindPriorityFrame)
        source = m_payload[priority::Source];
    else if (m_kind == KindAddressedFrame)
        source = Word(addressed::Source);
    return 0;
}

bool CTraceItemI::HasDestination() const {
    return m_kind == KindPriorityFrame || m_kind == KindAddressedFrame;
}

int CTraceItemI::GetDestination(std::uint8_t& destination) const {
    if (m_kind == KindPriorityFrame)
        destination = m_payload[priority::Destination];
    else if (m_kind == KindAddressedFrame)
        destination = static_cast<std::uint8_t>(Word(addressed::Destination));
    return 0;
}

bool CTraceItemI::HasSeverity() const {
    return m_kind == KindNone || m_kind == KindEvent || m_kind == KindPcTime;
}

int CTraceItemI::GetSeverity(std::uint8_t& severity) const {
    if (m_kind == KindNone)
        severity = 1;
    else if (m_kind == KindEvent)
        severity = m_payload[event::Severity];
    return 0;
}

bool CTraceItemI::HasData() const {
    return HasFrameData(m_kind);
}

int CTraceItemI::GetDataLength(std::uint8_t& length) const {
    if (!HasFrameData(m_kind))
        return 0;
    const std::uint8_t stored = m_payload[FieldsOf(m_kind).length];
    // A line byte carries one value whatever its length field says.
    length = (m_kind == KindLineByte && stored >= 2) ? 1 : stored;
    return 0;
}

bool CTraceItemI::IsFlexFrame() const {
    return m_kind == KindFlexFrame;
}

int CTraceItemI::GetFlexChannel(std::uint8_t& channelLetter) const {
    if (m_kind == KindFlexFrame)
        channelLetter = m_payload[flex::ChannelLetter];
    return 0;
}

bool CTraceItemI::IsFlexFrameSlot() const {
    return m_kind == KindFlexFrame;
}

int CTraceItemI::GetFlexSlot(std::uint32_t& slot) const {
    if (m_kind == KindFlexFrame)
        slot = m_payload[flex::Slot];
    return 0;
}

bool CTraceItemI::IsLineByte() const {
    return m_kind == KindLineByte;
}

bool CTraceItemI::HasDataPointer() const {
    return HasFrameData(m_kind);
}

int CTraceItemI::GetData(const std::uint8_t*& data) const {
    if (HasFrameData(m_kind))
        data = m_payload.data() + FieldsOf(m_kind).data;
    return 0;
}

int CTraceItemI::GetRawTime(std::uint32_t& time) const {
    time = m_time;
    return 0;
}

// ---- setters ---------------------------------------------------------------------

void CTraceItemI::SetEvent(std::uint32_t code, std::uint8_t channel, int, std::uint32_t time, std::uint8_t severity) {
    BeginKind(KindEvent);
    PutWord(event::Code, code);
    m_payload[event::Severity] = severity;
    m_channel = channel;
    StoreTime(time);
}

void CTraceItemI::SetEventUntimed(std::uint32_t code, std::uint8_t severity) {
    BeginKind(KindEvent);
    PutWord(event::Code, code);
    m_payload[event::Severity] = severity;
    m_channel = 0;
    m_timeValid = 0;
}

void CTraceItemI::SetPcTime(int year, int month, int day, int hour, int minute, int second) {
    BeginKind(KindPcTime);
    auto put = [this](std::size_t offset, int value) {
        m_payload[offset] = static_cast<std::uint8_t>(value);
        m_payload[offset + 1] = static_cast<std::uint8_t>(static_cast<unsigned>(value) >> 8);
    };
    put(pctime::Year, year);
    put(pctime::Month, month);
    put(pctime::Day, day);
    put(pctime::Hour, hour);
    put(pctime::Minute, minute);
    put(pctime::Second, second);
}

void CTraceItemI::SetMarkRecord(int year, int month, int day, int hour, int minute, int second, const char* text) {
    SetPcTime(year, month, day, hour, minute, second);
    if (text == nullptr)
        return;
    // A longer name is cut so that the text always ends inside the payload.
    const std::size_t length = strnlen(text, pctime::MarkTextRoom - 1);
    std::memcpy(m_payload.data() + MarkTextOffset, text, length);
    m_payload[MarkTextOffset + length] = 0;
}

void CTraceItemI::SetCanFrame(std::uint8_t channel, int, std::uint32_t time, std::uint32_t identifier,
                              std::uint8_t extended, std::uint8_t direction, std::uint8_t length,
                              const std::uint8_t* data) {
    BeginKind(KindCanFrame);
    PutWord(can::Identifier, identifier);
    m_payload[can::Extended] = extended;
    m_payload[can::Direction] = direction;
    m_payload[can::Length] = PutData(can::Data, length, data);
    m_channel = channel;
    StoreTime(time);
}

void CTraceItemI::SetBaudrate(int, std::uint32_t baudValue) {
    BeginKind(KindBaudrate);
    PutWord(baud::Baud, baudValue);
    m_timeValid = 0;
}

void CTraceItemI::SetBaudrateTimed(std::uint32_t time, std::uint32_t baudValue, std::uint32_t second) {
    BeginKind(KindBaudrate);
    PutWord(baud::Baud, baudValue);
    PutWord(baud::Second, second);
    StoreTime(time);
}

void CTraceItemI::SetTime(std::uint32_t time) {
    StoreTime(time);
}

void CTraceItemI::SetLineByte(int, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                              std::uint32_t value) {
    BeginKind(KindLineByte);
    m_payload[linebyte::Direction] = direction;
    // The length field is kept as read; GetDataLength reduces it to the one value byte.
    m_payload[linebyte::Length] = length;
    m_payload[linebyte::Value] = static_cast<std::uint8_t>(value);
    StoreTime(time);
}

void CTraceItemI::SetBaudrateFormat(std::uint32_t format, std::uint32_t baudValue, std::uint32_t time) {
    SetBaudrateFormatUntimed(format, baudValue);
    StoreTime(time);
}

void CTraceItemI::SetBaudrateFormatUntimed(std::uint32_t format, std::uint32_t baudValue) {
    BeginKind(KindBaudrateFormat);
    PutWord(event::Code, eventtexts::BaudFormatCode(format));
    m_payload[event::Severity] = 0;
    m_baudText = DecimalText(baudValue);
    m_timeValid = 0;
}

void CTraceItemI::SetPriorityFrame(int, std::uint32_t time, std::uint8_t priorityValue, std::uint8_t source,
                                   std::uint8_t destination, std::uint8_t direction, std::uint8_t length,
                                   const std::uint8_t* data) {
    BeginKind(KindPriorityFrame);
    m_payload[priority::Priority] = priorityValue;
    m_payload[priority::Source] = source;
    m_payload[priority::Destination] = destination;
    m_payload[priority::Direction] = direction;
    m_payload[priority::Length] = PutData(priority::Data, length, data);
    StoreTime(time);
}

void CTraceItemI::SetByteBlock(int, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                               const std::uint8_t* data) {
    BeginKind(KindByteBlock);
    m_payload[block::Direction] = direction;
    m_payload[block::Length] = PutData(block::Data, length, data);
    StoreTime(time);
}

void CTraceItemI::SetAddressedFrame(int, std::uint32_t time, std::uint32_t source, std::uint32_t destination,
                                    std::uint8_t direction, std::uint8_t length, const std::uint8_t* data) {
    BeginKind(KindAddressedFrame);
    PutWord(addressed::Source, source);
    PutWord(addressed::Destination, destination);
    m_payload[addressed::Direction] = direction;
    m_payload[addressed::Length] = static_cast<std::uint8_t>(std::min<std::size_t>(length, addressed::Copied));
    // The whole data field is taken whatever the length; callers pass 17 bytes.
    if (data != nullptr)
        std::memcpy(m_payload.data() + addressed::Data, data, addressed::Copied);
    StoreTime(time);
}

void CTraceItemI::SetFlexFrame(std::uint32_t time, std::uint32_t identifier, std::uint8_t frameFlag,
                               std::uint8_t channelLetter, std::uint8_t slot, std::uint8_t length,
                               const std::uint8_t* data) {
    BeginKind(KindFlexFrame);
    PutWord(flex::Identifier, identifier);
    m_payload[flex::FrameFlag] = frameFlag;
    m_payload[flex::ChannelLetter] = channelLetter;
    m_payload[flex::Slot] = slot;
    m_payload[flex::Length] = PutData(flex::Data, length, data);
    StoreTime(time);
}

void CTraceItemI::SetCanState(std::uint32_t state, std::uint32_t time) {
    const std::uint32_t code = (state >= 1 && state <= 7) ? 0x50010000u + state : 0x50010008u;
    SetEvent(code, 0, 0, time, 1);
}
