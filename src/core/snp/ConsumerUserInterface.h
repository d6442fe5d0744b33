#pragma once

#include "snp/SnpElements.h"

#include <string>
#include <vector>

namespace ZDTAnalyzer {
class SnpDoc;
}

namespace ZDTAnalyzer::Snp {

// The consumer of the pass that turns a snapshot file into the document's rows.
struct ConsumerUserInterface {
    SnpDoc* document = nullptr;
};

template <> struct SaxParserTraits<ConsumerUserInterface> {
    using XMLElements = Snp::XMLElements;
    using Consumer = ConsumerUserInterface;
    using Context = ConsumerContext<Consumer>;

    static void install(SaxParser<SaxParserTraits>& parser);
    static void onRow(Context& context, RowEvent event);
    static void onListCreated(Context& context);
};

using UserInterfaceParser = SaxParser<SaxParserTraits<ConsumerUserInterface>>;

// The text of a row for `event` from the (already cleaned) slots: six columns, each
// closed by 0x01, the first being the row flags.
std::string buildSnapshotRow(const std::vector<std::string>& slots, RowEvent event);

// Short name, then " " long name, then " [ " created " ]", each only when present.
std::string snapshotText(const std::vector<std::string>& slots);

} // namespace ZDTAnalyzer::Snp
