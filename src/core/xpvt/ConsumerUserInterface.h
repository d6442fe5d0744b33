#pragma once

#include "xpvt/XpvtElements.h"

#include <string>

namespace ZDTAnalyzer {
class XpvtDoc;
}

namespace ZDTAnalyzer::Xpvt {

// The consumer of the pass that turns a trace into the document's rows.
struct ConsumerUserInterface {
    XpvtDoc* document = nullptr;
    // Nesting of parameters (7.01: response parameters; 7.02: Result, Request,
    // Response and parameters) and the deepest level opened since.
    int ParameterLevel = 0;
    int LastOpenedLevel = 0;
    std::string row; // reused for every row, so a row costs no allocation
};

template <> struct SaxParserTraits<ConsumerUserInterface> {
    using XMLElements = Xpvt::XMLElements;
    using Consumer = ConsumerUserInterface;
    using Context = XpvtContext<Consumer>;
    using Parser = SaxParser<SaxParserTraits>;

    // Every file starts on the 7.01 tables; the end of Description switches a 7.02 file
    // over through XpvtDoc::installSchemaTables.
    static void install(Parser& parser) { install701(parser); }
    static void install701(Parser& parser);
    static void install702(Parser& parser);
};

using UserInterfaceParser = SaxParser<SaxParserTraits<ConsumerUserInterface>>;
using UserInterfaceContext = XpvtContext<ConsumerUserInterface>;

// Shared by both schemas' tables: the end of Description stores the session header in
// the document and lets it install the tables of its schema.
void endDescription(UserInterfaceContext& context);

} // namespace ZDTAnalyzer::Xpvt
