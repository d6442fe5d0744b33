#pragma once

#include "trace/CTraceItem.h"

#include <array>
#include <cstdint>
#include <string>

struct ScanLine;

// Record kinds; the payload layout of each is fixed (see CTraceItemI.cpp).
enum : std::uint8_t {
    KindNone = 0,
    KindEvent = 1,
    KindPcTime = 2,
    KindCanFrame = 3,
    KindBaudrate = 4,
    KindLineByte = 5,
    KindBaudrateFormat = 6,
    KindPriorityFrame = 7,
    KindAddressedFrame = 8,
    KindByteBlock = 9,
    KindFlexFrame = 16,
};

// The one implementation of CTraceItem. The 52-byte payload is an overlay by kind,
// packed without padding, so that each kind has room for a fixed number of data bytes.
class CTraceItemI final : public CTraceItem {
public:
    static constexpr std::size_t PayloadSize = 52;
    static constexpr std::size_t MarkTextOffset = 20;

    CTraceItemI();
    ~CTraceItemI() override = default;

    // Most data bytes a kind can hold; a longer declared length is capped to this.
    static std::size_t DataCapacity(std::uint8_t kind);

    std::uint16_t GetTypeCode() const override;
    bool HasMarkText() const override;
    int GetMarkText(std::string& text) const override;
    bool IsRecognised() const override;
    int GetKind(std::uint8_t& kind) const override;
    bool HasChannel() const override;
    int GetChannel(std::uint8_t& channel) const override;
    bool HasTime() const override;
    int GetTime(std::uint32_t& time) const override;
    bool IsEvent() const override;
    int GetEventCode(std::uint32_t& code) const override;
    int GetEventText(std::string& text) const override;
    bool IsPcTime() const override;
    int GetPcTimeText(std::string& text) const override;
    bool HasIdentifier() const override;
    int GetIdentifier(std::uint32_t& identifier) const override;
    int GetExtendedFlag(std::uint8_t& extended) const override;
    bool HasDirection() const override;
    int GetDirection(std::uint8_t& direction) const override;
    bool HasPriority() const override;
    int GetPriority(std::uint32_t& priority) const override;
    bool HasSource() const override;
    int GetSource(std::uint32_t& source) const override;
    bool HasDestination() const override;
    int GetDestination(std::uint8_t& destination) const override;
    bool HasSeverity() const override;
    int GetSeverity(std::uint8_t& severity) const override;
    bool HasData() const override;
    int GetDataLength(std::uint8_t& length) const override;
    bool IsFlexFrame() const override;
    int GetFlexChannel(std::uint8_t& channelLetter) const override;
    bool IsFlexFrameSlot() const override;
    int GetFlexSlot(std::uint32_t& slot) const override;
    bool IsLineByte() const override;
    bool HasDataPointer() const override;
    int GetData(const std::uint8_t*& data) const override;
    int GetRawTime(std::uint32_t& time) const override;

    void SetEvent(std::uint32_t code, std::uint8_t channel, int reserved, std::uint32_t time,
                  std::uint8_t severity) override;
    void SetPcTime(int year, int month, int day, int hour, int minute, int second) override;
    void SetCanFrame(std::uint8_t channel, int reserved, std::uint32_t time, std::uint32_t identifier,
                     std::uint8_t extended, std::uint8_t direction, std::uint8_t length,
                     const std::uint8_t* data) override;
    void SetBaudrate(int reserved, std::uint32_t baud) override;
    void SetTime(std::uint32_t time) override;
    void SetLineByte(int reserved, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                     std::uint32_t value) override;
    void SetBaudrateFormat(std::uint32_t format, std::uint32_t baud, std::uint32_t time) override;
    void SetPriorityFrame(int reserved, std::uint32_t time, std::uint8_t priority, std::uint8_t source,
                          std::uint8_t destination, std::uint8_t direction, std::uint8_t length,
                          const std::uint8_t* data) override;
    void SetByteBlock(int reserved, std::uint32_t time, std::uint8_t direction, std::uint8_t length,
                      const std::uint8_t* data) override;
    void SetAddressedFrame(int reserved, std::uint32_t time, std::uint32_t source, std::uint32_t destination,
                           std::uint8_t direction, std::uint8_t length, const std::uint8_t* data) override;
    int ParseLine(const char* line, int reserved) override;
    int ParseLineV701(const char* line, int reserved) override;

    void SetEventUntimed(std::uint32_t code, std::uint8_t severity);
    void SetMarkRecord(int year, int month, int day, int hour, int minute, int second, const char* text);
    void SetBaudrateTimed(std::uint32_t time, std::uint32_t baud, std::uint32_t second);
    void SetBaudrateFormatUntimed(std::uint32_t format, std::uint32_t baud);
    void SetCanState(std::uint32_t state, std::uint32_t time);

private:
    // Back to the state of construction, so that a reader may fill a reused item.
    void Reset();
    // First step of both readers: resets the record and reads the type code of the line.
    // False when the line holds no type code.
    bool BeginRecord(const ScanLine& line);
    // Kind 16 has no setter of its own in the interface; the fixed-column reader fills it.
    void SetFlexFrame(std::uint32_t time, std::uint32_t identifier, std::uint8_t frameFlag, std::uint8_t channelLetter,
                      std::uint8_t slot, std::uint8_t length, const std::uint8_t* data);
    // Kind 16 from the fixed columns of 0038/0039 or, `withSlot`, of 0090/0091.
    void ReadFlexFrame(const ScanLine& line, bool withSlot, std::uint8_t frameFlag);
    // Clears the payload and sets the kind: every setter starts here.
    void BeginKind(std::uint8_t kind);
    void StoreTime(std::uint32_t time);
    void PutWord(std::size_t offset, std::uint32_t value);
    std::uint32_t Word(std::size_t offset) const;
    // Copies min(length, DataCapacity(kind)) bytes to `offset` and returns the stored length.
    std::uint8_t PutData(std::size_t offset, std::uint8_t length, const std::uint8_t* data);

    std::uint32_t m_typeFull = 0;
    std::uint16_t m_typeCode = 0;
    std::uint8_t m_kind = KindNone;
    std::array<std::uint8_t, PayloadSize> m_payload{};
    std::uint8_t m_channel = 0;
    std::uint32_t m_time = 0;
    std::string m_baudText;
    std::uint8_t m_timeValid = 0;
};
