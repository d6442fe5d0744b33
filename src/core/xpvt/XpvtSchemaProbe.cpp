#include "xpvt/XpvtSchemaProbe.h"

#include "common/Operation.h"
#include "xpvt/XpvtDoc.h"

namespace ZDTAnalyzer {

namespace {

// The document's own open, stopped at the first block after the header was read.
class HeaderOnlyDoc final : public XpvtDoc {
public:
    void installSchemaTables() override {
        XpvtDoc::installSchemaTables();
        m_headerRead = true;
    }
    bool headerRead() const { return m_headerRead; }

private:
    bool m_headerRead = false;
};

class StopAfterHeader final : public zdt::ProgressSink {
public:
    explicit StopAfterHeader(const HeaderOnlyDoc& doc) : m_doc(doc) {}
    bool onProgress(unsigned long long, unsigned long long) override { return !m_doc.headerRead(); }

private:
    const HeaderOnlyDoc& m_doc;
};

} // namespace

std::optional<XpvtSchema> probeXpvtSchema(const std::string& path, const std::string& swapDirectory,
                                          zdt::MessageSink& messages) {
    HeaderOnlyDoc doc;
    StopAfterHeader stop(doc);
    // An XML error after a complete header is for whoever reads on to report.
    zdt::MessageList boxes;
    if (!doc.OnOpenDocument(path, swapDirectory, &boxes, &stop) && !doc.headerRead()) {
        for (const zdt::UserMessage& box : boxes.messages())
            messages.showMessage(box);
        return std::nullopt;
    }
    return doc.is702() ? XpvtSchema::V702 : XpvtSchema::V701;
}

bool ProbeXpvtIs702(const std::string& path, const std::string& swapDirectory) {
    zdt::MessageList ignored;
    return probeXpvtSchema(path, swapDirectory, ignored) == XpvtSchema::V702;
}

} // namespace ZDTAnalyzer
