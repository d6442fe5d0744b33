#pragma once

#include "trace/CTraceItemI.h"

#include <cstdint>
#include <string>
#include <vector>

// A parsed record with its getters as values, for the reader tests.
struct RecordProbe {
    CTraceItemI item;

    // A getter's value, or all ones when it leaves its out-parameter alone.
    template <typename T> T Get(int (CTraceItem::*getter)(T&) const) const {
        T value = static_cast<T>(~T{});
        (item.*getter)(value);
        return value;
    }
    std::uint8_t Kind() const { return Get(&CTraceItem::GetKind); }
    std::uint32_t Code() const { return Get(&CTraceItem::GetEventCode); }
    std::uint8_t Severity() const { return Get(&CTraceItem::GetSeverity); }
    std::uint32_t Time() const { return Get(&CTraceItem::GetTime); }
    std::uint8_t Channel() const { return Get(&CTraceItem::GetChannel); }
    std::uint8_t Direction() const { return Get(&CTraceItem::GetDirection); }
    std::uint32_t Identifier() const { return Get(&CTraceItem::GetIdentifier); }
    std::uint8_t Extended() const { return Get(&CTraceItem::GetExtendedFlag); }
    std::string Text() const {
        std::string text;
        item.GetEventText(text);
        return text;
    }
    std::vector<std::uint8_t> Data() const {
        const std::uint8_t* data = nullptr;
        item.GetData(data);
        return data ? std::vector<std::uint8_t>(data, data + Get(&CTraceItem::GetDataLength))
                    : std::vector<std::uint8_t>{};
    }
};
