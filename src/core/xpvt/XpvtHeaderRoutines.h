#pragma once

#include "xpvt/XpvtElements.h"

#include <string>

namespace ZDTAnalyzer::Xpvt {

// The part of a trace both schemas read alike: the path from the document root to the
// trace and the session header (Description). A 7.02 file is read by these tables up to
// the end of its header, so they are the same in both schemas' tables.
template <typename Parser> struct XpvtHeaderRoutines {
    using E = XMLElements;
    using Context = typename Parser::Context;
    using Transition = typename Parser::Transition;

    static std::string& slot(Context& c, int number) { return c.slots[static_cast<std::size_t>(number)]; }

    // Text of an element joins what its slot already holds.
    template <int SlotNumber> static void appendText(Context& c, const std::string& text) {
        slot(c, SlotNumber) += text;
    }

    static void startDescription(Context& c, const char** a) {
        appendAttribute(a, "DateTime", slot(c, Slot::DateTime));
    }
    static void startProject(Context& c, const char** a) {
        appendAttribute(a, "ShortName", slot(c, Slot::ProjectName));
    }
    static void startVehicleInformationTable(Context& c, const char** a) {
        appendAttribute(a, "ShortName", slot(c, Slot::VehicleInformationTableName));
    }

    // Root, ProcessValueTrace and the header down to VehicleInformationTable; what a
    // LogicalLink holds differs between the schemas and is theirs to set.
    static void installTransitions(Parser& parser) {
        static const Transition root[] = {{"ProcessValueTrace", E::ProcessValueTrace}, {"", E::UnknownElement}};
        static const Transition processValueTrace[] = {
            {"Description", E::Description}, {"Trace", E::Trace}, {"", E::UnknownElement}};
        static const Transition description[] = {
            {"Title", E::Title},     {"Schema", E::Schema},   {"ProductVersion", E::ProductVersion},
            {"Date", E::Date},       {"Time", E::Time},       {"Author", E::Author},
            {"Comment", E::Comment}, {"Project", E::Project}, {"", E::UnknownElement}};
        static const Transition project[] = {{"ShortName", E::ShortNameInProject},
                                             {"VehicleInformationTable", E::VehicleInformationTable},
                                             {"", E::UnknownElement}};
        static const Transition vehicleInformationTable[] = {{"ShortName", E::ShortNameInVehicleInformationTable},
                                                             {"LogicalLink", E::LogicalLink},
                                                             {"", E::UnknownElement}};
        parser.setTransitions(E::DocumentRoot, root);
        parser.setTransitions(E::ProcessValueTrace, processValueTrace);
        parser.setTransitions(E::Description, description);
        parser.setTransitions(E::Project, project);
        parser.setTransitions(E::VehicleInformationTable, vehicleInformationTable);
    }

    // The header's routines, after the schema's own (which start from empty tables).
    static void installRoutines(Parser& parser, typename Parser::EndRoutine descriptionEnd) {
        parser.setStartRoutine(E::Description, &startDescription);
        parser.setStartRoutine(E::Project, &startProject);
        parser.setStartRoutine(E::VehicleInformationTable, &startVehicleInformationTable);
        parser.setCharacterRoutine(E::Title, &appendText<Slot::Title>);
        parser.setCharacterRoutine(E::Schema, &appendText<Slot::Schema>);
        parser.setCharacterRoutine(E::ProductVersion, &appendText<Slot::ProductVersion>);
        parser.setCharacterRoutine(E::Date, &appendText<Slot::Date>);
        parser.setCharacterRoutine(E::Time, &appendText<Slot::Time>);
        parser.setCharacterRoutine(E::Author, &appendText<Slot::Author>);
        parser.setCharacterRoutine(E::Comment, &appendText<Slot::Comment>);
        parser.setCharacterRoutine(E::ShortNameInProject, &appendText<Slot::ProjectName>);
        parser.setCharacterRoutine(E::ShortNameInVehicleInformationTable,
                                   &appendText<Slot::VehicleInformationTableName>);
        parser.setEndRoutine(E::Description, descriptionEnd);
    }
};

} // namespace ZDTAnalyzer::Xpvt
