#pragma once

#include "common/RowTypes.h"
#include "xpvt/XpvtElements.h"
#include "xpvt/XpvtFindCriteria.h"

namespace ZDTAnalyzer {
class XpvtDoc;
}

namespace ZDTAnalyzer::Xpvt {

// The consumer of the search pass: it counts rows exactly as the row pass makes them
// and marks the rows that match the document's criteria of its schema.
struct ConsumerFindInterface {
    XpvtDoc* document = nullptr;
    const XpvtFindCriteria701* criteria701 = nullptr;
    const XpvtFindCriteria702* criteria702 = nullptr;
    zdt::RowIndex row = 0; // the row the next event makes
    // 7.02: a row remembered to be marked together with a later parameter hit; NoRow for none.
    zdt::RowIndex pendingRow = zdt::NoRow;
    // 7.02: the nesting the row pass keeps in its consumer; parameter rows depend on it.
    int ParameterLevel = 0;
    int LastOpenedLevel = 0;
    // 7.02: whether the request or response now being read passed its page's own tests,
    // so that its parameters may match.
    bool ownerMatches = false;
};

template <> struct SaxParserTraits<ConsumerFindInterface> {
    using XMLElements = Xpvt::XMLElements;
    using Consumer = ConsumerFindInterface;
    using Context = XpvtContext<Consumer>;
    using Parser = SaxParser<SaxParserTraits>;

    // The schema is known before a search: its tables go in at once.
    static void install(Parser& parser, Context& context);
    static void install701(Parser& parser);
    static void install702(Parser& parser);
};

using FindParser = SaxParser<SaxParserTraits<ConsumerFindInterface>>;
using FindContext = XpvtContext<ConsumerFindInterface>;

} // namespace ZDTAnalyzer::Xpvt
