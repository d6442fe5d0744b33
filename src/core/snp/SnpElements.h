#pragma once

#include "xmldoc/ConsumerContext.h"
#include "xmldoc/PrintableOnly.h"
#include "xmldoc/SaxParser.h"

#include <array>
#include <cstring>
#include <string>

namespace ZDTAnalyzer::Snp {

// Element states of a snapshot file, shared by the row pass and the search pass.
enum class XMLElements : int {
    SnapList,
    SnapShot,
    ZDTProject,
    VIT,
    LogicalLink,
    Service,
    BUS,
    ECUAddress,
    ComPrimitive,
    DTC,
    Error,
    ProcessValue,
    UnknownElement,
    Unused, // kept so that the count and DocumentRoot keep their values
    DocumentRoot,
};

// Value slots of the format, the same numbers in both passes.
namespace Slot {
inline constexpr int Project = 0;
inline constexpr int Vit = 1;
inline constexpr int ShortName = 5;
inline constexpr int LongName = 6;
inline constexpr int Created = 7;
inline constexpr int Name = 8;
inline constexpr int LinkName = 9;
inline constexpr int Unit = 10;
inline constexpr int Value = 11; // process value text and fault code name
} // namespace Slot

// The moments at which the row pass makes a row and the search pass counts one.
// Both passes see exactly these events in the same order.
enum class RowEvent {
    SnapShotStart,
    SnapShotStop,
    Project,
    Vit,
    LinkStart,
    LinkStop,
    Service,
    ComPrimitive,
    Dtc,
    Error,
    ProcessValue,
};

// Specialised once per consumer: the row pass and the search pass.
template <typename Consumer> struct SaxParserTraits;

// Replaces the slot with the first attribute of that name; an absent one leaves it.
inline void readAttribute(const char** attributes, const char* name, std::string& slot) {
    for (const char** a = attributes; a != nullptr && *a != nullptr; a += 2) {
        if (std::strcmp(a[0], name) == 0) {
            slot = a[1];
            return;
        }
    }
}

// Slot handling and nesting common to both passes. `Traits` adds two hooks:
//   static void onRow(Context&, RowEvent);      // the row (or its count) at this moment
//   static void onListCreated(Context&);        // "SnapList" has read its "Created"
// The slots a row uses are cleaned by PrintableOnly before the hook runs.
template <typename Traits> struct SnapshotRoutines {
    using E = typename Traits::XMLElements;
    using Parser = SaxParser<Traits>;
    using Context = ConsumerContext<typename Traits::Consumer>;
    using Transition = typename Parser::Transition;

    static void row(Context& c, RowEvent event) {
        for (int slot : slotsOf(event))
            if (slot >= 0)
                PrintableOnly(c.slots[static_cast<std::size_t>(slot)]);
        Traits::onRow(c, event);
    }

    static std::array<int, 3> slotsOf(RowEvent event) {
        switch (event) {
        case RowEvent::SnapShotStart:
        case RowEvent::SnapShotStop:
            return {Slot::ShortName, Slot::LongName, Slot::Created};
        case RowEvent::Project:
            return {Slot::Project, -1, -1};
        case RowEvent::Vit:
            return {Slot::Vit, -1, -1};
        case RowEvent::LinkStart:
        case RowEvent::LinkStop:
            return {Slot::LinkName, -1, -1};
        case RowEvent::Dtc:
            return {Slot::Value, -1, -1};
        case RowEvent::ProcessValue:
            return {Slot::Name, Slot::Unit, Slot::Value};
        default:
            return {Slot::Name, -1, -1};
        }
    }

    static std::string& slot(Context& c, int number) { return c.slots[static_cast<std::size_t>(number)]; }

    static void startSnapList(Context& c, const char** a) {
        readAttribute(a, "Created", slot(c, Slot::Created));
        PrintableOnly(slot(c, Slot::Created));
        Traits::onListCreated(c);
    }
    static void startSnapShot(Context& c, const char** a) {
        readAttribute(a, "ShortName", slot(c, Slot::ShortName));
        readAttribute(a, "LongName", slot(c, Slot::LongName));
        readAttribute(a, "Created", slot(c, Slot::Created));
        row(c, RowEvent::SnapShotStart);
    }
    static void endSnapShot(Context& c) {
        row(c, RowEvent::SnapShotStop);
        slot(c, Slot::ShortName).clear();
        slot(c, Slot::LongName).clear();
        slot(c, Slot::Created).clear();
    }
    static void projectText(Context& c, const std::string& text) { slot(c, Slot::Project) += text; }
    static void endProject(Context& c) {
        row(c, RowEvent::Project);
        slot(c, Slot::Project).clear();
    }
    static void vitText(Context& c, const std::string& text) { slot(c, Slot::Vit) += text; }
    static void endVit(Context& c) {
        row(c, RowEvent::Vit);
        slot(c, Slot::Vit).clear();
    }
    static void startLink(Context& c, const char** a) {
        readAttribute(a, "Name", slot(c, Slot::LinkName));
        row(c, RowEvent::LinkStart);
    }
    static void endLink(Context& c) {
        row(c, RowEvent::LinkStop);
        slot(c, Slot::LinkName).clear();
    }
    // Service, ComPrimitive and Error: a row at the start, from the name alone.
    template <RowEvent Event> static void startNamed(Context& c, const char** a) {
        readAttribute(a, "Name", slot(c, Slot::Name));
        row(c, Event);
        slot(c, Slot::Name).clear();
    }
    static void startDtc(Context& c, const char** a) {
        readAttribute(a, "Name", slot(c, Slot::Value));
        row(c, RowEvent::Dtc);
        slot(c, Slot::Value).clear();
    }
    static void startProcessValue(Context& c, const char** a) {
        readAttribute(a, "Name", slot(c, Slot::Name));
        readAttribute(a, "Unit", slot(c, Slot::Unit));
    }
    static void processValueText(Context& c, const std::string& text) { slot(c, Slot::Value) += text; }
    // A value's row comes at its end, when its text is complete.
    static void endProcessValue(Context& c) {
        row(c, RowEvent::ProcessValue);
        slot(c, Slot::Name).clear();
        slot(c, Slot::Unit).clear();
        slot(c, Slot::Value).clear();
    }

    static void installTransitions(Parser& parser) {
        static const Transition root[] = {{"SnapList", E::SnapList}, {"", E::UnknownElement}};
        static const Transition snapList[] = {{"SnapShot", E::SnapShot}, {"", E::UnknownElement}};
        static const Transition snapShot[] = {
            {"ZDTProject", E::ZDTProject}, {"VIT", E::VIT}, {"LogicalLink", E::LogicalLink},
            {"Service", E::Service},       {"BUS", E::BUS}, {"ECUAddress", E::ECUAddress},
            {"", E::UnknownElement}};
        static const Transition link[] = {{"Service", E::Service},
                                          {"ComPrimitive", E::ComPrimitive},
                                          {"DTC", E::DTC},
                                          {"Error", E::Error},
                                          {"", E::UnknownElement}};
        // Every child of these, whatever its name, is read as a process value.
        static const Transition values[] = {{"ProcessValue", E::ProcessValue}, {"", E::ProcessValue}};

        parser.setAllTransitions(Parser::defaultTransitions());
        parser.setTransitions(E::DocumentRoot, root);
        parser.setTransitions(E::SnapList, snapList);
        parser.setTransitions(E::SnapShot, snapShot);
        parser.setTransitions(E::LogicalLink, link);
        parser.setTransitions(E::Service, values);
        parser.setTransitions(E::ComPrimitive, values);
        parser.setTransitions(E::DTC, values);
    }

    static void install(Parser& parser) {
        installTransitions(parser);
        parser.setStartRoutine(E::SnapList, &startSnapList);
        parser.setStartRoutine(E::SnapShot, &startSnapShot);
        parser.setStartRoutine(E::LogicalLink, &startLink);
        parser.setStartRoutine(E::Service, &startNamed<RowEvent::Service>);
        parser.setStartRoutine(E::ComPrimitive, &startNamed<RowEvent::ComPrimitive>);
        parser.setStartRoutine(E::DTC, &startDtc);
        parser.setStartRoutine(E::Error, &startNamed<RowEvent::Error>);
        parser.setStartRoutine(E::ProcessValue, &startProcessValue);

        parser.setAllCharacterRoutines(nullptr);
        parser.setCharacterRoutine(E::ZDTProject, &projectText);
        parser.setCharacterRoutine(E::VIT, &vitText);
        parser.setCharacterRoutine(E::ProcessValue, &processValueText);

        parser.setAllEndRoutines(nullptr);
        parser.setEndRoutine(E::SnapShot, &endSnapShot);
        parser.setEndRoutine(E::ZDTProject, &endProject);
        parser.setEndRoutine(E::VIT, &endVit);
        parser.setEndRoutine(E::LogicalLink, &endLink);
        parser.setEndRoutine(E::ProcessValue, &endProcessValue);
    }
};

} // namespace ZDTAnalyzer::Snp
