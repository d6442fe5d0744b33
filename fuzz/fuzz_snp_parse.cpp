// Feeds arbitrary bytes through both snapshot passes: the row pass builds rows into a
// swap file and the search pass marks them; neither may crash, and both must agree on
// the number of rows whenever the open succeeded.
#include "FuzzSupport.h"
#include "snp/SnpDoc.h"

#include <cstdint>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string directory = [] {
        char pattern[] = "/tmp/fuzz_snp_XXXXXX";
        const char* made = ::mkdtemp(pattern);
        return made == nullptr ? std::string("/tmp/") : std::string(made) + "/";
    }();
    const std::string path = directory + "input.snp";
    if (!fuzzsupport::WriteInput(path, "", data, size))
        return 0;

    ZDTAnalyzer::SnpDoc doc;
    if (doc.OnOpenDocument(path, directory, nullptr)) {
        ZDTAnalyzer::SnpFindCriteria all;
        all.searchSnapShot = all.shortNameOn = true;
        all.searchLogicalLink = all.linkNameOn = true;
        all.searchService = all.serviceNameOn = true;
        all.searchComPrimitive = all.comPrimitiveNameOn = true;
        all.searchDtc = all.dtcValueOn = true;
        all.searchProcessValue = all.valueNameOn = true;
        fuzzsupport::RequireMarksInsideList(doc, doc.find(all, nullptr));
    }
    return 0;
}
