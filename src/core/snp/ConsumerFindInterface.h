#pragma once

#include "common/RowTypes.h"
#include "snp/SnpElements.h"
#include "snp/SnpFindCriteria.h"

#include <string>
#include <vector>

namespace ZDTAnalyzer {
class SnpDoc;
}

namespace ZDTAnalyzer::Snp {

// The consumer of the search pass: it counts rows exactly as the row pass makes them
// and marks the rows whose raw values match.
struct ConsumerFindInterface {
    SnpDoc* document = nullptr;
    const SnpFindCriteria* criteria = nullptr;
    zdt::RowIndex row = 0; // the row the next event makes
};

template <> struct SaxParserTraits<ConsumerFindInterface> {
    using XMLElements = Snp::XMLElements;
    using Consumer = ConsumerFindInterface;
    using Context = ConsumerContext<Consumer>;

    static void install(SaxParser<SaxParserTraits>& parser);
    static void onRow(Context& context, RowEvent event);
    // The search sets no description.
    static void onListCreated(Context&) {}
};

using FindParser = SaxParser<SaxParserTraits<ConsumerFindInterface>>;

// Whether the row of `event`, with these (cleaned) slots, is a hit. The criteria of a
// row are alternatives; a case-sensitive substring test on bytes.
bool rowMatches(const SnpFindCriteria& criteria, const std::vector<std::string>& slots, RowEvent event);

} // namespace ZDTAnalyzer::Snp
