// Opening arbitrary bytes as a classic trace, then every row, the report and a search.
#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicRowFormatter.h"
#include "classic/ClassicSearch.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    char path[] = "/tmp/zdt-fuzz-open-XXXXXX";
    const int fd = ::mkstemp(path);
    if (fd < 0)
        return 0;
    const bool written = ::write(fd, bytes, size) == static_cast<ssize_t>(size);
    ::close(fd);
    if (written) {
        CAnalyzerDoc doc;
        if (doc.OnOpenDocument(path)) {
            ClassicRowFormatter formatter(doc);
            for (zdt::RowIndex row = 0; row < doc.GetVisibleCount() && row < 2000; ++row)
                formatter.Format(row);
            ClassicReportFormatter report(doc);
            for (zdt::RowIndex row = 0; row < doc.GetVisibleCount() && row < 200; ++row)
                report.FormatLine(row);
            ClassicFindCriteria criteria;
            criteria.useData = true;
            criteria.dataText = "01";
            criteria.busOff = true;
            ScanClassicTrace(doc, criteria, true);
            doc.OnCloseDocument(false);
        }
    }
    ::unlink(path);
    return 0;
}
