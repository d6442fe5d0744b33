#include "xpvt/XpvtDoc.h"

#include "xmldoc/GuardedPass.h"
#include "xpvt/ConsumerFindInterface.h"

#include <array>
#include <utility>

namespace ZDTAnalyzer {

void XpvtDoc::Description::setField(std::string name, std::string value) {
    // Compared in this order; the first field of that name takes the value.
    const std::array<std::pair<const char*, std::string*>, 12> fields{{
        {"Title", &Title},
        {"Schema", &Schema},
        {"ProductVersion", &ProductVersion},
        {"Date", &Date},
        {"Time", &Time},
        {"Author", &Author},
        {"Comment", &Comment},
        {"Project", &Project},
        {"VehicleInformationTable", &VehicleInformationTable},
        {"DateTime", &DateTime},
        {"LogicalLink", &LogicalLink},
        {"DatabaseAccessKey", &DatabaseAccessKey},
    }};
    for (const auto& [fieldName, field] : fields) {
        if (name == fieldName) {
            *field = std::move(value);
            return;
        }
    }
}

XpvtDoc::XpvtDoc() = default;

XpvtDoc::~XpvtDoc() {
    // The parser goes first: it holds the input file open for the document's life.
    m_parser.release();
}

bool XpvtDoc::OnOpenDocument(const std::string& path, const std::string& swapDirectory, zdt::MessageSink* messages,
                             zdt::ProgressSink* progress) {
    m_pathName = path;
    m_consumer.document = this;
    m_context.consumer = &m_consumer;
    // Every file starts on the 7.01 tables; the header may switch them while reading.
    return parseIntoRows(m_parser, m_context, m_pathName, swapDirectory, OpenFailedText, messages, progress);
}

void XpvtDoc::installSchemaTables() {
    m_schemaIs702.store(m_description.Schema == Schema702, std::memory_order_release);
    if (is702())
        Xpvt::SaxParserTraits<Xpvt::ConsumerUserInterface>::install702(m_parser);
}

bool XpvtDoc::find(zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    return runGuardedPass<Xpvt::FindParser>(
        messages, SearchFailedText,
        [&] {
            clearFindResults();
            Xpvt::ConsumerFindInterface consumer;
            consumer.document = this;
            // The search's tables are chosen by the schema; each reads only its own record.
            consumer.criteria701 = &m_findCriteria701;
            consumer.criteria702 = &m_findCriteria702;
            Xpvt::FindContext context(&consumer);
            Xpvt::FindParser parser;
            parser.parse(m_pathName.c_str(), context, progressOf<Xpvt::FindParser>(progress, m_pathName));
            parser.release();
            updateAllViews();
        },
        // The marks made so far are real marks: let the views show them.
        [this] { updateAllViews(); });
}

void XpvtDoc::appendXpvtRow(std::string_view row) {
    container().appendRow(row);
    updateAllViews();
}

} // namespace ZDTAnalyzer
