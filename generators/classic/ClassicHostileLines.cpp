// Lines a well-behaved writer never produces.

#include "ClassicTraceState.h"

namespace zdtgen {
namespace {

constexpr std::size_t kLongLine = 300;

} // namespace

void ClassicTraceGenerator::State::EnableHostileKinds() {
    const HostileExtras& h = options.hostile;
    if (h.emptyLines)
        hostileKinds.push_back(Hostile::Empty);
    if (h.digitOneLines)
        hostileKinds.push_back(Hostile::DigitOne);
    if (h.bracketLines)
        hostileKinds.push_back(Hostile::Bracket);
    if (h.longLines)
        hostileKinds.push_back(Hostile::Long);
    if (h.overlongLengths)
        hostileKinds.push_back(Hostile::Overlong);
    if (h.binaryGarbage) {
        hostileKinds.push_back(Hostile::GarbageLine);
        hostileKinds.push_back(Hostile::GarbageRecord);
    }
}

// Bytes of every value but the line ends.
void ClassicTraceGenerator::State::GarbageBytes(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        char c = static_cast<char>(random.Byte());
        if (c == '\r' || c == '\n')
            c = '\x7F';
        line.Char(c);
    }
}

// Builds the next hostile line; true when it is a record line.
bool ClassicTraceGenerator::State::BuildHostileLine() {
    const Hostile kind = hostileKinds[hostileNext];
    hostileNext = (hostileNext + 1) % hostileKinds.size();
    line.Clear();
    lowerCase = false;
    switch (kind) {
    case Hostile::Empty:
        return false;
    case Hostile::DigitOne:
        line.Text("1000 00001234 no record starts with a one");
        return false;
    case Hostile::Bracket:
        line.Text("[Comment] no record starts with a bracket");
        return false;
    case Hostile::Long:
        BuildType(legacy ? 0x5000 : 0x0038, 0);
        while (line.Str().size() < kLongLine) {
            Sp();
            H2(random.Byte());
        }
        line.Mutable().resize(kLongLine);
        return true;
    case Hostile::Overlong:
        BuildOverlong();
        return true;
    case Hostile::GarbageLine:
        line.Char(static_cast<char>(0x80 | random.Byte()));
        GarbageBytes(20 + random.Below(100));
        return false;
    case Hostile::GarbageRecord:
        Type(legacy ? 0x5000 : 0x0034);
        Sp();
        GarbageBytes(30 + random.Below(170));
        return true;
    }
    return false;
}

void ClassicTraceGenerator::State::BuildOverlong() {
    static constexpr std::array<std::uint16_t, 4> kLegacy = {0x5000, 0x0034, 0x0020, 0x8023};
    static constexpr std::array<std::uint16_t, 4> kV701 = {0x0038, 0x5000, 0x0034, 0x0090};
    const std::uint16_t type = (legacy ? kLegacy : kV701)[overlongNext++ % 4];
    const bool decimal = !legacy && type != 0x0034;
    // The widest value each length field can hold.
    lengthOverride = type == 0x0020 ? 0xFFu : (decimal ? 9999u : 0xFFFFu);
    BuildType(type, 0);
    lengthOverride.reset();
}

} // namespace zdtgen
