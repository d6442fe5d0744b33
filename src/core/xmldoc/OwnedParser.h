#pragma once

#include <expat.h>

#include <memory>

namespace ZDTAnalyzer {

struct ParserFree {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

// An Expat parser freed when it goes.
using OwnedParser = std::unique_ptr<XML_ParserStruct, ParserFree>;

} // namespace ZDTAnalyzer
