#pragma once

#include "xmldoc/ConsumerContext.h"
#include "xmldoc/SaxParser.h"

#include <cstring>
#include <string>
#include <vector>

namespace ZDTAnalyzer::Xpvt {

// Element states of a process value trace, one set for both schemas and both passes.
// An element that is handled differently under different parents has one state per role.
enum class XMLElements : int {
    AccessKeyOfLocation,                // 0
    Author,                             // 1
    CloseLogicalLink,                   // 2
    CodeDescription,                    // 3
    Comment,                            // 4
    Description,                        // 5
    DiagComPrimitiveInStart,            // 6  in StartDiagComPrimitive
    DiagComPrimitiveInFinish,           // 7  in FinishDiagComPrimitive
    DiagComPrimitiveInResult,           // 8  in Result
    DiagComPrimitiveInParents,          // 9  in ParentDiagComPrimitives
    Error,                              // 10
    FinishDiagComPrimitive,             // 11
    LocationAddress,                    // 12
    LogicalLink,                        // 13
    OpenLogicalLink,                    // 14
    ParentDiagComPrimitives,            // 15
    PhysicalInterfaceLink,              // 16
    PhysicalVehicleLink,                // 17
    ProcessValueTrace,                  // 18
    ProductVersion,                     // 19
    Project,                            // 20
    Request,                            // 21
    RequestMessage,                     // 22
    RequestParameter,                   // 23
    Response,                           // 24
    ResponseMessage,                    // 25
    ResponseParameter,                  // 26
    Result,                             // 27
    Schema,                             // 28
    StartDiagComPrimitive,              // 29
    StartTrace,                         // 30
    StopTrace,                          // 31
    Text,                               // 32
    TimeStamp,                          // 33
    Title,                              // 34
    Trace,                              // 35
    Unit,                               // 36
    ValueInResponseParameter,           // 37
    ValueInRequestParameter,            // 38
    ValueAsString,                      // 39
    ValueRangeInfo,                     // 40
    VariantDetectedInTrace,             // 41
    VariantDetectedInFinish,            // 42
    VariantSelectedInTrace,             // 43
    VariantSelectedInFinish,            // 44
    VehicleInformationTable,            // 45
    VendorCode,                         // 46
    VendorCodeDescription,              // 47
    CANID,                              // 48
    CloseComPrimitive,                  // 49
    DatabaseAccessKey,                  // 50
    Date,                               // 51
    ZdtError,                           // 52
    ZdtRequest,                         // 53
    ZdtRequestParameter,                // 54
    ZdtResponse,                        // 55
    ZdtResponseParameter,               // 56
    ZdtResult,                          // 57
    ZdtValueInRequestParameter,         // 58
    ZdtValueInResponseParameter,        // 59
    ECU,                                // 60
    ID,                                 // 61
    LogicalLinkInZdtResult,             // 62
    OpenComPrimitive,                   // 63
    PduInZdtRequest,                    // 64
    PduInZdtResponse,                   // 65
    Radix,                              // 66
    RangeInfo,                          // 67
    Severity,                           // 68
    SeverityInfo,                       // 69
    ShortName,                          // 70
    ShortNameInLogicalLink,             // 71
    ShortNameInProject,                 // 72
    ShortNameInVehicleInformationTable, // 73
    ShortNameInZdtRequest,              // 74
    State,                              // 75
    StateInfo,                          // 76
    Time,                               // 77
    Type,                               // 78
    TypeInPrimitive,                    // 79
    ValueInZdtValue,                    // 80
    UnknownElement,                     // 81
    Unused,                             // 82
    DocumentRoot,                       // 83
};

// Value slots of ConsumerContext::slots; the numbers are fixed per schema, both passes
// use the same ones.
namespace Slot {
// 7.01, and the Description of both schemas
inline constexpr int Time = 0;
inline constexpr int Date = 1;
inline constexpr int LogicalLinkName = 2;
inline constexpr int PrimitiveType = 3;
inline constexpr int PhysicalInterfaceLink = 4;
inline constexpr int RequestName = 5;
inline constexpr int Pdu = 6;
inline constexpr int ShortName = 7;
inline constexpr int Text = 8;
inline constexpr int Value = 9;
inline constexpr int CodeDescription = 10;
inline constexpr int Severity = 11;
inline constexpr int SeverityInfo = 12;
inline constexpr int Ecu = 13;
inline constexpr int State = 14;
inline constexpr int Title = 15;
inline constexpr int Schema = 16;
inline constexpr int ProductVersion = 17;
inline constexpr int Author = 18;
inline constexpr int Comment = 19;
inline constexpr int ProjectName = 20;
inline constexpr int VehicleInformationTableName = 21;
inline constexpr int DatabaseAccessKey = 22;
inline constexpr int CanId = 23;
inline constexpr int TimeStamp = 24;
inline constexpr int DateTime = 25;
// 7.02 only
inline constexpr int PhysicalVehicleLink = 26;
inline constexpr int AccessKeyOfLocation = 27;
inline constexpr int PrimitiveId = 28;
inline constexpr int ObjectType = 29;
inline constexpr int VariantDetected = 30;
inline constexpr int VariantSelected = 31;
inline constexpr int LocationAddress = 32;
inline constexpr int Unit = 33;
inline constexpr int RequestMessage = 34;
inline constexpr int ResponseMessage = 35;
inline constexpr int ValueAsString = 36;
inline constexpr int ErrorCode = 37;
inline constexpr int VendorCode = 38;
inline constexpr int VendorCodeDescription = 39;
inline constexpr int ValueType = 40;
inline constexpr int ParameterType = 41;
inline constexpr int Radix = 42;
inline constexpr int RangeType = 43;
inline constexpr int ParentChain = 46;
inline constexpr int MessageRowsDone = 47;
// No slot from here on is ever written.
inline constexpr int UsedCount = 48;
} // namespace Slot

// What the routines of either pass receive: the slots, then the per-level flags that
// the 7.02 parameter rows need, then the consumer (null: collect, build nothing).
template <typename Consumer> struct XpvtContext {
    static constexpr std::size_t SlotCount = 400;

    explicit XpvtContext(Consumer* consumerOrNull = nullptr)
        : slots(SlotCount), parameterHasChildren(SlotCount, 0), consumer(consumerOrNull) {}

    std::vector<std::string> slots;
    std::vector<int> parameterHasChildren;
    Consumer* consumer;
};

// "Clear all slots": the slots from Slot::UsedCount on are never written, so they stay
// empty and need no clearing; this keeps the clear cheap at every element start.
template <typename Context> inline void clearAllSlots(Context& context) {
    for (int i = 0; i < Slot::UsedCount; ++i)
        context.slots[static_cast<std::size_t>(i)].clear();
}

// Specialised once per consumer: the row pass and the search pass.
template <typename Consumer> struct SaxParserTraits;

// XPVT attribute reads append to their slot (as text reads do); an absent one adds nothing.
inline void appendAttribute(const char** attributes, const char* name, std::string& slot) {
    for (const char** a = attributes; a != nullptr && *a != nullptr; a += 2) {
        if (std::strcmp(a[0], name) == 0) {
            slot += a[1];
            return;
        }
    }
}

} // namespace ZDTAnalyzer::Xpvt
