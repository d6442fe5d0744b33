#pragma once

// The state of one snapshot file write, shared by the writers of the elements and of the
// hostile variants. Only the generator's own sources include this.

#include "GeneratorRandom.h"
#include "SnapshotGenerator.h"
#include "SnapshotXmlWriter.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zdtgen {
namespace snp {

inline std::string TwoDigits(std::uint64_t value) {
    return std::string(1, static_cast<char>('0' + value / 10 % 10)) + static_cast<char>('0' + value % 10);
}

} // namespace snp

struct SnapshotGenerator::State {
    using XmlWriter = snp::XmlWriter;

    explicit State(const SnapshotOptions& o) : options(o), random(o.seed) {}

    const SnapshotOptions& options;
    Random random;
    XmlWriter* xml = nullptr;
    std::uint64_t snapshot = 0;

    const SnapshotHostile& Hostile() const { return options.hostile; }

    // "hh:mm:ss,dd.mm.yyyy", moving on with the snapshot number.
    std::string Created(std::uint64_t index) const {
        const std::uint64_t seconds = 8 * 3600 + index * 97;
        const std::uint64_t day = seconds / 86400 % 28 + 1;
        return snp::TwoDigits(seconds / 3600 % 24) + ":" + snp::TwoDigits(seconds / 60 % 60) + ":" +
               snp::TwoDigits(seconds % 60) + "," + snp::TwoDigits(day) + ".11.2023";
    }

    std::string Number() { return std::to_string(random.Below(10000)) + "." + std::to_string(random.Below(10)); }
    std::string HexBytes(std::uint32_t count) {
        static const char* digits = "0123456789ABCDEF";
        std::string text;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t byte = random.Below(256);
            if (i != 0)
                text += ' ';
            text += "0x";
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
        return text;
    }

    // ---- the elements (SnapshotElements.cpp) ----
    void WriteFile(XmlSink& sink);
    void WriteSnapShot();
    void WriteProject();
    void WriteVit();
    void WriteLink(bool everyKind);
    void WriteService();
    void WriteComPrimitive();
    void WriteDtc();
    void WriteError();
    void WriteValues(std::uint32_t count);

    // ---- hostile pieces (SnapshotHostileVariants.cpp) ----

    void WriteSplit(const std::string& text);
    void WriteSplitValue();
    void WriteControlValues();
    void WriteNonAsciiValues();
    void WriteHugeValue();
    void WriteCatchAll(std::string_view parent);
    void WriteDeepCatchAll();
    void WriteLinkExtras();
    void WriteSnapshotExtras();
    void WriteListExtras();

    bool m_hugeWritten = false;
};

} // namespace zdtgen
