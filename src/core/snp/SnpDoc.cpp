#include "snp/SnpDoc.h"

#include "snp/ConsumerFindInterface.h"
#include "xmldoc/GuardedPass.h"

namespace ZDTAnalyzer {

void SnpDoc::Description::setField(std::string name, std::string value) {
    if (name == "DateTime")
        m_dateTime = std::move(value);
}

SnpDoc::SnpDoc() = default;

SnpDoc::~SnpDoc() {
    // The parser goes first: it holds the input file open for the document's life.
    m_parser.release();
}

bool SnpDoc::OnOpenDocument(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                            zdt::ProgressSink* progress) {
    m_pathName = path;
    m_consumer.document = this;
    m_context.consumer = &m_consumer;
    return parseIntoRows(m_parser, m_context, m_pathName, swapDirectory, OpenFailedText, messages, progress);
}

SnpDoc::SessionInformationDialog SnpDoc::sessionInformation() const {
    SessionInformationDialog dialog;
    dialog.fileName = m_pathName;
    const std::string& text = m_description.dateTime();
    const auto comma = text.find(',');
    if (comma == std::string::npos) {
        dialog.date = text;
    } else {
        dialog.time = text.substr(0, comma);
        dialog.date = text.substr(comma + 1);
    }
    return dialog;
}

void SnpDoc::showSessionInformation(zdt::MessageSink* messages,
                                    const std::function<void(const SessionInformationDialog&)>& showDialog) const {
    try {
        showDialog(sessionInformation());
    } catch (...) {
        showDocumentError(messages, SessionInformationFailedText);
    }
}

bool SnpDoc::find(const SnpFindCriteria& criteria, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    return runGuardedPass<Snp::FindParser>(
        messages, SearchFailedText,
        [&] {
            clearFindResults();
            Snp::ConsumerFindInterface consumer{this, &criteria, 0};
            ConsumerContext<Snp::ConsumerFindInterface> context(&consumer);
            Snp::FindParser parser;
            parser.parse(m_pathName.c_str(), context, progressOf<Snp::FindParser>(progress, m_pathName));
            parser.release();
            updateAllViews();
        },
        // The marks made so far are real marks: let the views show them.
        [this] { updateAllViews(); });
}

void SnpDoc::appendSnapshotRow(std::string_view row) {
    container().appendRow(row);
    updateAllViews();
}

} // namespace ZDTAnalyzer
