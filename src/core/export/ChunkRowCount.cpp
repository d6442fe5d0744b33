#include "export/ChunkRowCount.h"

#include "snp/SnpDoc.h"
#include "xpvt/XpvtDoc.h"

namespace ZDTAnalyzer {

std::optional<zdt::RowCount> CountListRows(const std::string& path, ConversionKind kind,
                                           const std::string& swapDirectory, zdt::MessageSink& messages) {
    if (kind == ConversionKind::Snapshot) {
        SnpDoc doc;
        if (!doc.OnOpenDocument(path, swapDirectory, &messages))
            return std::nullopt;
        return doc.container().rowCount();
    }
    XpvtDoc doc;
    if (!doc.OnOpenDocument(path, swapDirectory, &messages))
        return std::nullopt;
    return doc.container().rowCount();
}

} // namespace ZDTAnalyzer
