#pragma once

#include <cstdint>
#include <string>

// One classic trace record, as rendering, search and filtering see it.
// Each property has a test and a getter; getters return 0 and write the value
// through the out-parameter, and leave it alone on a kind they do not serve
// (unless documented otherwise on the implementation).
class CTraceItem {
public:
    virtual ~CTraceItem() = default;

    virtual std::uint16_t GetTypeCode() const = 0;
    virtual bool HasMarkText() const = 0;
    virtual int GetMarkText(std::string& text) const = 0;
    virtual bool IsRecognised() const = 0;
    virtual int GetKind(std::uint8_t& kind) const = 0;
    virtual bool HasChannel() const = 0;
    virtual int GetChannel(std::uint8_t& channel) const = 0;
    virtual bool HasTime() const = 0;
    virtual int GetTime(std::uint32_t& time) const = 0;
    virtual bool IsEvent() const = 0;
    virtual int GetEventCode(std::uint32_t& code) const = 0;
    virtual int GetEventText(std::string& text) const = 0;
    virtual bool IsPcTime() const = 0;
    virtual int GetPcTimeText(std::string& text) const = 0;
    virtual bool HasIdentifier() const = 0;
    virtual int GetIdentifier(std::uint32_t& identifier) const = 0;
    virtual int GetExtendedFlag(std::uint8_t& extended) const = 0;
    virtual bool HasDirection() const = 0;
    virtual int GetDirection(std::uint8_t& direction) const = 0;
    virtual bool HasPriority() const = 0;
    virtual int GetPriority(std::uint32_t& priority) const = 0;
    virtual bool HasSource() const = 0;
    virtual int GetSource(std::uint32_t& source) const = 0;
    virtual bool HasDestination() const = 0;
    virtual int GetDestination(std::uint8_t& destination) const = 0;
    virtual bool HasSeverity() const = 0;
    virtual int GetSeverity(std::uint8_t& severity) const = 0;
    virtual bool HasData() const = 0;
    virtual int GetDataLength(std::uint8_t& length) const = 0;
    virtual bool IsFlexFrame() const = 0;
    virtual int GetFlexChannel(std::uint8_t& channelLetter) const = 0;
    virtual bool IsFlexFrameSlot() const = 0;
    virtual int GetFlexSlot(std::uint32_t& slot) const = 0;
    virtual bool IsLineByte() const = 0;
    virtual bool HasDataPointer() const = 0;
    virtual int GetData(const std::uint8_t*& data) const = 0;
    virtual int GetRawTime(std::uint32_t& time) const = 0;

    virtual void SetEvent(std::uint32_t code, std::uint8_t channel, int reserved, std::uint32_t time,
                          std::uint8_t severity) = 0;
    virtual void SetPcTime(int year, int month, int day, int hour, int minute, int second) = 0;
    virtual void SetCanFrame(std::uint8_t channel, int reserved, std::uint32_t time, std::uint32_t identifier,
                             std::uint8_t extended, std::uint8_t direction, std::uint8_t length,
                             const std::uint8_t* data) = 0;
    virtual void SetBaudrate(int reserved, std::uint32_t baud) = 0;
    virtual void SetTime(std::uint32_t time) = 0;
    virtual void SetLineByte(int reserved, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                             std::uint32_t value) = 0;
    virtual void SetBaudrateFormat(std::uint32_t format, std::uint32_t baud, std::uint32_t time) = 0;
    virtual void SetPriorityFrame(int reserved, std::uint32_t time, std::uint8_t priority, std::uint8_t source,
                                  std::uint8_t destination, std::uint8_t direction, std::uint8_t length,
                                  const std::uint8_t* data) = 0;
    virtual void SetByteBlock(int reserved, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                              const std::uint8_t* data) = 0;
    virtual void SetAddressedFrame(int reserved, std::uint32_t time, std::uint32_t source, std::uint32_t destination,
                                   std::uint8_t direction, std::uint8_t length, const std::uint8_t* data) = 0;
    // Readers: ParseLine for format versions "2", "5", "501", "601"; ParseLineV701 for "701".
    // `line` is zero-terminated; neither reader looks beyond its terminator. Both return 0.
    virtual int ParseLine(const char* line, int reserved) = 0;
    virtual int ParseLineV701(const char* line, int reserved) = 0;
};
