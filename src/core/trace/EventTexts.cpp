#include "trace/EventTexts.h"

#include <array>

namespace eventtexts {

const char* MessageText(std::uint32_t code) {
    // A switch rather than a map: the renderer asks for a text on every event row it paints.
    switch (code) {
    case 0x00010001:
        return "Start communication";
    case 0x00010002:
        return "Stop communication";
    case 0x00010003:
        return "Start trace";
    case 0x00010004:
        return "Stop trace";
    case 0x00020001:
        return "Invalid bytes";
    case 0x00020004:
        return "KLine response received";
    case 0x00020005:
        return "KLine request send";
    case 0x00030003:
        return "KLine byte flush";
    case 0x00030004:
        return "KLine byte flush later";
    case 0x0003000A:
        return "GPD insert";
    case 0x2001000A:
        return "Hardware communication timeout";
    case 0x2001000B:
        return "Receive FIFO overflow";
    case 0x2001000C:
        return "Error additional";
    case 0x2001000D:
        return "Transmit FIFO overflow";
    case 0x2001000E:
        return "No card interrupt possible";
    case 0x2001000F:
        return "Unknown error in CAN communication!";
    case 0x20010010:
        return "Error transmit FIFO";
    case 0x20010011:
        return "Warning 96";
    case 0x20010012:
        return "FIFO overflow";
    case 0x20010013:
        return "Invalid item";
    case 0x20020009:
        return "Undefined event";
    case 0x2002000A:
        return "Timer overrun";
    case 0x2002000B:
        return "Trace overrun";
    case 0x20020015:
        return "Trace FIFO overrun";
    case 0x20020016:
        return "Trace error unknown";
    case 0x20020017:
        return "sync pattern received";
    case 0x20020018:
        return "Error KLine wrong parity";
    case 0x20020019:
        return "Error KLine wrong byteformat / stopbit error";
    case 0x2002001A:
        return "Error KLine overrun on receive";
    case 0x20030005:
        return "KLine timer overflow";
    case 0x20030006:
        return "KLine buffer Overflow";
    case 0x20030007:
        return "CAN timer overflow";
    case 0x20030008:
        return "CAN buffer overflow";
    case 0x20030009:
        return "Unknown error";
    case 0x2003000D:
        return "J2190 Timer overflow";
    case 0x2003000E:
        return "J2190 buffer overflow";
    case 0x20040010:
        return "Unknown event";
    case 0x40020002:
        return "Received corrupted byte";
    case 0x40020003:
        return "Syncpattern (55H) received";
    case 0x40020006:
        return "Start dominant bus level";
    case 0x40020007:
        return "Start recessive bus level";
    case 0x40020008:
        return "Start of 5 baud initialization";
    case 0x4002000C:
        return "Init address found";
    case 0x40020015:
    case 0x40030001:
        return "Dominant bus level";
    case 0x40020016:
    case 0x40030002:
        return "Recessive bus level";
    case 0x50010001:
        return "Error passive";
    case 0x50010002:
        return "Bus off";
    case 0x50010003:
        return "Fifo overflow";
    case 0x50010004:
        return "Error card";
    case 0x50010005:
        return "Error active";
    case 0x50010006:
        return "Warning 96";
    case 0x50010007:
        return "Error frame";
    case 0x50010008:
        return "Unknown CAN error";
    case 0x50080016:
        return "Invalid Can Identifier";
    case 0x6003000B:
        return "J2190 send";
    case 0x6003000C:
        return "J2190 received";
    case 0x80010005:
        return "Bus off       (bus state changed)";
    case 0x80010006:
        return "Error active  (bus state changed)";
    case 0x80010007:
        return "Error passive (bus state changed)";
    case 0x80010015:
        return "FLEX STATE CHANGE TO STOPPRD";
    case 0x80010016:
        return "FLEX STATE CHANGE TO STARTUP";
    case 0x80010017:
        return "FLEX STATE CHANGE TO ACTIVE";
    case 0x80010018:
        return "FLEX STATE CHANGE TO PASSIVE";
    case 0x80010019:
        return "FLEX STATE UNKNOWN";
    case 0xC0010008:
        return "Error frame detected";
    case 0xC0010009:
        return "Remote frame detected";
    default:
        return nullptr;
    }
}

const char* MarkText(std::uint32_t typeCode) {
    static constexpr std::array<const char*, 8> Marks = {
        "[Start Trace Recording]",
        "[Stop Trace Recording]",
        "[Communication started]",
        "[Communication stopped]",
        "[Trace started by Trigger event]",
        "[Trace stopped by Trigger event]",
        "[PC Time Stamp]",
        "[CAN Filter changed]",
    };
    if (typeCode < 0xFF01 || typeCode > 0xFF08)
        return nullptr;
    return Marks[typeCode - 0xFF01];
}

namespace {

// Format bytes 0..17 in order; code 0x50080005 belongs to no format.
constexpr std::array<std::uint32_t, 18> FormatCodes = {
    0x50080001, 0x50080002, 0x50080003, 0x50080004, 0x50080006, 0x50080007, 0x50080008, 0x50080009, 0x5008000A,
    0x5008000B, 0x5008000C, 0x5008000D, 0x5008000E, 0x5008000F, 0x50080010, 0x50080011, 0x50080012, 0x50080013,
};

} // namespace

std::uint32_t BaudFormatCode(std::uint32_t format) {
    return format < FormatCodes.size() ? FormatCodes[format] : FormatUnknownCode;
}

const char* BaudFormatSuffix(std::uint32_t code) {
    switch (code) {
    case 0x50080001:
        return " Format 7N1";
    case 0x50080002:
        return " Format 7O1";
    case 0x50080003:
        return " Format 7E1";
    case 0x50080004:
        return " Format 7N2";
    case 0x50080006:
        return " Format 7O2";
    case 0x50080007:
        return " Format 7E2";
    case 0x50080008:
        return " Format 8N1";
    case 0x50080009:
        return " Format 8O1";
    case 0x5008000A:
        return " Format 8E1";
    case 0x5008000B:
        return " Format 8N2";
    case 0x5008000C:
        return " Format 8O2";
    case 0x5008000D:
        return " Format 8E2";
    case 0x5008000E:
        return " Format 9N1";
    case 0x5008000F:
        return " Format 9O1";
    case 0x50080010:
        return " Format 9E1";
    case 0x50080011:
        return " Format 9N2";
    case 0x50080012:
        return " Format 902";
    case 0x50080013:
        return " Format 9E2";
    case 0x50080014:
        return " Data Format Unknown";
    default:
        return nullptr;
    }
}

} // namespace eventtexts
