#pragma once

#include "support/TempDir.h"

#include <string>

// Small hand-made classic traces whose rows are worked out in the tests.
namespace classic_traces {

inline std::string Head(const std::string& title, const std::string& schema) {
    return CrLf({"[Description]", "Title=" + title, "Schema=" + schema, "Creator=unit test", "ProductVersion=7.1.2",
                 "InterfaceBoard=VCI-4", "Date=21.11.2026", "Time=14:05:09"});
}

// K-line bytes and an event: a diagnostic trace of absolute times.
inline std::string Diagnostic601() {
    return Head("ZDT Trace File", "601") +
           CrLf({"[TraceData]", "0003 00001000 0001 83 00", "0004 00004000 0001 F1 00", "0005 00006710"});
}

// CAN frames on two channels and a bus event: a CAN trace of another title.
inline std::string Can601() {
    return Head("CAN Onboard", "601") +
           CrLf({"[TraceData]", "5000 01 000007E8 0000001000 0008 01 02 03 04 05 06 07 08",
                 "6000 02 000007E0 0000001500 0002 AA BB 00 00 00 00 00 00",
                 "5800 01 18DAF110 0000003000 0003 10 20 30 00 00 00 00 00", "4403 01 X 0000004000"});
}

// A 701 trace with untimed records between timed ones.
inline std::string Diagnostic701() {
    return Head("ZDT Trace File", "701") + CrLf({"[TraceData]", "FF01 X  X 2026 - 11 - 21 14 : 05 : 09",
                                                 "0005 X        0000012345", "0000 X -", "0000 X 20000"});
}

inline std::string Filter(const std::string& type, std::initializer_list<std::string> ids) {
    std::string text = "[CAN]\r\nType=" + type + "\r\nNoOfEntries=" + std::to_string(ids.size()) + "\r\n";
    int number = 1;
    for (const auto& id : ids)
        text += std::to_string(number++) + "=" + id + "\r\n";
    return text;
}

} // namespace classic_traces
