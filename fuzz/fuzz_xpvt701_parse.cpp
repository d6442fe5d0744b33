// Feeds arbitrary bytes as a process value trace through both passes: the row pass builds
// rows into a swap file, then a search with criteria of every 7.01 kind marks them.
// Neither may crash or leak, marks must name rows of the list, and no swap file may stay
// behind once the document is gone.
#include "FuzzSupport.h"
#include "xpvt/XpvtDoc.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fuzzsupport;

void SetCriteria(ZDTAnalyzer::XpvtFindCriteria701& c) {
    c.searchPrimitives = c.searchRequests = c.searchResponses = c.searchBothSides = true;
    c.matchByName = true;
    c.nameText = "LL";
    c.pduEnabled = true;
    c.pduText = "0";
    c.parameterEnabled = c.parameterValueEnabled = true;
    c.parameterText = "1";
    c.errorEnabled = c.errorByCode = true;
    c.errorCodeText = "";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string inputDirectory = MakeDirectory("fuzz_xpvt701_in");
    static const std::string swapDirectory = MakeDirectory("fuzz_xpvt701_swap");
    const std::string path = inputDirectory + "/input.xpvt";
    if (!WriteInput(path, "", data, size))
        return 0;
    {
        ZDTAnalyzer::XpvtDoc doc;
        if (doc.OnOpenDocument(path, swapDirectory, nullptr)) {
            // Both records: the bytes may name schema 7.02 themselves.
            SetCriteria(doc.findCriteria701());
            doc.findCriteria702().parameterSection.findPressed = true;
            doc.findCriteria702().primitiveSection.findPressed = true;
            RequireMarksInsideList(doc, doc.find(nullptr));
        }
    }
    RequireEmpty(swapDirectory);
    return 0;
}
