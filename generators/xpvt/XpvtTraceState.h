#pragma once

// The state of one process value trace write, shared by the writers of the header and of
// both schemas' trees. Only the generator's own sources include this.

#include "GeneratorRandom.h"
#include "XpvtTraceGenerator.h"
#include "XpvtXmlOut.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zdtgen {

struct XpvtTraceGenerator::State {
    using XmlOut = xpvt::XmlOut;

    explicit State(const XpvtTraceOptions& o) : options(o), random(o.seed) {}

    const XpvtTraceOptions& options;
    Random random;
    XmlOut* xml = nullptr;
    std::uint64_t result = 0;
    std::uint64_t timeStamp = 1000000;
    std::uint32_t edgeIndex = 0;

    const XpvtHostile& Hostile() const { return options.hostile; }
    bool Is702() const { return options.schema == XpvtSchema::V702; }

    static std::string Decimal(std::uint64_t value) { return std::to_string(value); }
    static std::string TwoDigits(std::uint64_t value) {
        return std::string(1, static_cast<char>('0' + value / 10 % 10)) + static_cast<char>('0' + value % 10);
    }
    std::string Identifier(std::string_view prefix) { return std::string(prefix) + Decimal(random.Below(1000)); }
    std::string Date701() const { return TwoDigits(21 + result / 1000 % 7) + ".11.2023"; }
    std::string Pdu() { return random.OneIn(8) ? std::string("NO PDU") : HexBytes(EdgeLength()); }

    // ---- values (XpvtTraceWriter.cpp) ----
    std::string Text(std::string plain);
    std::string Split(const std::string& markup);
    std::string Name(std::string plain);
    std::string Stamp();
    std::string Time701();
    std::uint32_t EdgeLength();
    std::string HexBytes(std::uint32_t count);
    void Leaf(std::string_view name, std::string plain);

    // ---- the file (XpvtTraceWriter.cpp) ----
    void WriteFile(XmlSink& sink);

    // ---- the header, start and stop (XpvtHeader.cpp) ----
    void WriteDescription();
    void WriteTraceInUnknown();
    void WriteDeepNesting();
    void WriteTraceStart();
    void WriteTraceStop();

    // ---- the 7.01 tree (Xpvt701Tree.cpp) ----
    void WriteLink701(std::string_view link);
    void WriteLinkEvent701(std::string_view element, std::string_view link);
    void WritePrimitive701(std::string_view element, std::string_view link);
    void WriteError701();
    void WriteParameterBody701();
    void WriteResponseParameter701(std::uint32_t depth);
    void WriteResult701(std::string_view link);
    void WriteResponse701();
    void WriteBlock701();

    // ---- the 7.02 tree (Xpvt702Tree.cpp) ----
    void WriteLinkHead702(std::string_view link);
    void WriteLinkEvent702(std::string_view element, std::string_view link);
    std::string ParentName();
    void WriteParents702();
    void WriteDiagComPrimitive702(std::string_view name, std::string_view id, std::string_view type);
    void WritePrimitiveEvent702(bool start, std::string_view link, std::string_view name, std::string_view id,
                                std::string_view type, bool parents);
    void WriteError702();
    void WriteValue702();
    void WriteParameter702(bool request, std::uint32_t depth);
    void WriteRequest702();
    void WriteResponse702();
    void WriteResult702(std::string_view link, std::string_view name, std::string_view id, std::string_view type,
                        bool parents);
    void WriteBlock702();
};

} // namespace zdtgen
