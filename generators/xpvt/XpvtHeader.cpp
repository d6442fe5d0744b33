// The header of a process value trace, the start and stop of the trace, and the hostile
// content around them.

#include "XpvtTraceState.h"

#include <array>
#include <string>

namespace zdtgen {

void XpvtTraceGenerator::State::WriteDescription() {
    XmlOut& x = *xml;
    if (options.descriptionDateTime)
        x.Open("Description", {{"DateTime", *options.descriptionDateTime}});
    else
        x.Open("Description");
    Leaf("Title", "Process value trace " + Decimal(options.seed));
    if (Hostile().unknownElements) {
        // A Schema that a reader must not take: its parent is unknown.
        x.Open("Extension");
        x.Leaf("Schema", Is702() ? "7.01" : "7,02");
        x.Close();
    }
    if (!options.omitSchema)
        x.Leaf("Schema", EscapedText(XpvtSchemaText(options)));
    Leaf("ProductVersion", "7.4.2 build 118");
    if (options.descriptionDateChildren) {
        x.Leaf("Date", "21.11.2023");
        x.Leaf("Time", "14:05:09");
    }
    Leaf("Author", "Workshop tester");
    Leaf("Comment", "Generated trace & checks <A>");
    x.Open("Project", {{"ShortName", Name("PRJ")}});
    Leaf("ShortName", "Prj_Main");
    x.Open("VehicleInformationTable", {{"ShortName", Name("VIT")}});
    Leaf("ShortName", "VIT_2023");
    x.Open("LogicalLink");
    Leaf("ShortName", "LL_Engine");
    Leaf("DatabaseAccessKey", "DAK.Engine.Base");
    x.Close();
    x.Close();
    x.Close();
    x.Close();
}

// A whole trace inside an unknown element: nothing of it may show.
void XpvtTraceGenerator::State::WriteTraceInUnknown() {
    XmlOut& x = *xml;
    x.Open("TraceCopy", {{"Reason", "backup"}});
    x.Open("Trace");
    x.Open("StartTrace", {{"DateTime", "hidden"}});
    x.Leaf("Date", "01.01.2000");
    x.Close();
    x.Close();
    x.Close();
}

// On one line: indenting hundreds of levels would make most of a small file blanks.
void XpvtTraceGenerator::State::WriteDeepNesting() {
    const std::string inner = Is702() ? "Result" : "ZdtResult";
    std::string text = "\n";
    for (std::uint32_t level = 0; level < Hostile().nestingDepth; ++level)
        text += level % 2 == 0 ? "<Nest>" : "<" + inner + ">";
    text += Is702() ? "<RequestMessage>DE AD</RequestMessage>" : "<PDU>DE AD</PDU>";
    for (std::uint32_t level = Hostile().nestingDepth; level-- > 0;)
        text += level % 2 == 0 ? "</Nest>" : "</" + inner + ">";
    xml->Raw(text);
}

void XpvtTraceGenerator::State::WriteTraceStart() {
    XmlOut& x = *xml;
    if (Is702()) {
        x.Open("StartTrace", {{"DateTime", "2023-11-21T14:05:09.120"}});
        Leaf("PhysicalInterfaceLink", "VCI_1");
        Leaf("PhysicalVehicleLink", "OBD_CAN");
        x.Close();
        return;
    }
    x.Open("StartTrace");
    Leaf("Date", Date701());
    Leaf("Time", Time701());
    x.Close();
}

void XpvtTraceGenerator::State::WriteTraceStop() {
    XmlOut& x = *xml;
    if (Is702()) {
        x.Open("StopTrace", {{"DateTime", "2023-11-21T18:00:00.000"}});
        if (Hostile().unknownElements) // StopTrace has no children: these are skipped
            x.Empty("LogicalLink", {{"ShortName", "Inside stop"}});
        x.Close();
        return;
    }
    x.Open("StopTrace");
    Leaf("Date", Date701());
    Leaf("Time", Time701());
    x.Close();
}

} // namespace zdtgen
