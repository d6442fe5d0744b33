// Feeds arbitrary bytes as the body of a 7.02 process value trace: a header with Schema
// "7,02" goes first, so the 7.02 tables read whatever follows. Then a search with every
// page of the 7.02 sheet marks rows. Neither may crash or leak, marks must name rows of the
// list, and no swap file may stay behind once the document is gone.
#include "FuzzSupport.h"
#include "xpvt/XpvtDoc.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fuzzsupport;

// The seeds are sample traces with everything up to the header's end cut off.
constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessValueTrace>\n"
                                "  <Description DateTime=\"2023-11-21T14:05:09\"><Schema>7,02</Schema></Description>\n";

// Short texts that the generated traces hold often, so that marks happen.
void SetCriteria(ZDTAnalyzer::XpvtFindCriteria702& c) {
    c.logicalLinkSection.findPressed = true;
    c.logicalLinkSection.link = "LL";
    c.requestSection.findPressed = true;
    c.requestSection.parameterEnabled = true;
    c.requestSection.paramName = "1";
    c.responseSection.findPressed = true;
    c.responseSection.message = "0";
    c.primitiveSection.findPressed = true;
    c.primitiveSection.parent = "a";
    c.primitiveSection.minTime = "100";
    c.resultSection.findPressed = true;
    c.resultSection.primitiveId = "1";
    c.parameterSection.findPressed = true;
    c.parameterSection.value = "$";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string inputDirectory = MakeDirectory("fuzz_xpvt702_in");
    static const std::string swapDirectory = MakeDirectory("fuzz_xpvt702_swap");
    const std::string path = inputDirectory + "/input.xpvt";
    if (!WriteInput(path, kHeader, data, size))
        return 0;
    {
        ZDTAnalyzer::XpvtDoc doc;
        if (doc.OnOpenDocument(path, swapDirectory, nullptr)) {
            if (!doc.is702())
                std::abort(); // the header names 7.02 and stands before anything else
            SetCriteria(doc.findCriteria702());
            RequireMarksInsideList(doc, doc.find(nullptr));
        }
    }
    RequireEmpty(swapDirectory);
    return 0;
}
