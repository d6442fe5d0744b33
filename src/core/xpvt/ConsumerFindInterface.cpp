#include "xpvt/ConsumerFindInterface.h"

#include "xpvt/XpvtDoc.h"

namespace ZDTAnalyzer::Xpvt {

void SaxParserTraits<ConsumerFindInterface>::install(Parser& parser, Context& context) {
    // The schema is asked of the document now, once: no table changes during a search.
    const bool is702 =
        context.consumer != nullptr && context.consumer->document != nullptr && context.consumer->document->is702();
    if (is702)
        install702(parser);
    else
        install701(parser);
}

} // namespace ZDTAnalyzer::Xpvt
