#include "xpvt/XpvtDoc.h"

#include "xpvt/ConsumerFindInterface.h"

#include <array>
#include <filesystem>
#include <utility>

namespace ZDTAnalyzer {

namespace {

void show(zdt::MessageSink* messages, const std::string& text) {
    if (messages != nullptr)
        messages->showMessage(zdt::UserMessage{"", text, zdt::MessageIcon::Error});
}

// Feeds the parser's block progress to the sink, against the file's size.
template <typename Parser>
typename Parser::ProgressCallback progressOf(zdt::ProgressSink* progress, const std::string& path) {
    if (progress == nullptr)
        return {};
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    const unsigned long long total = error ? 0 : size;
    return [progress, total](std::uint64_t done) { return progress->onProgress(done, total); };
}

} // namespace

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
    try {
        container().createSwapFile(swapDirectory);
        m_consumer.document = this;
        m_context.consumer = &m_consumer;
        // Every file starts on the 7.01 tables; the header may switch them while reading.
        m_parser.parse(m_pathName.c_str(), m_context, progressOf<Xpvt::UserInterfaceParser>(progress, m_pathName));
        // Buffered rows go on file now, so that a full disk fails the open.
        container().flush();
        return true;
    } catch (const Xpvt::UserInterfaceParser::Cancelled&) {
        return false;
    } catch (const Xpvt::UserInterfaceParser::Exception& error) {
        show(messages, error.message());
    } catch (const FileContainerBase::Exception& error) {
        show(messages, error.message());
    } catch (...) {
        show(messages, OpenFailedText);
    }
    return false;
}

void XpvtDoc::installSchemaTables() {
    if (is702())
        Xpvt::SaxParserTraits<Xpvt::ConsumerUserInterface>::install702(m_parser);
}

bool XpvtDoc::find(zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    try {
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
        return true;
    } catch (const Xpvt::FindParser::Cancelled&) {
        // The marks made so far are real marks: let the views show them.
        updateAllViews();
        return false;
    } catch (const Xpvt::FindParser::Exception& error) {
        show(messages, error.message());
    } catch (const FileContainerBase::Exception& error) {
        show(messages, error.message());
    } catch (...) {
        show(messages, SearchFailedText);
    }
    return false;
}

void XpvtDoc::filter(zdt::MessageSink* messages) {
    // No filter runs on this document yet, so the command fails as a failed filter
    // does; the document stays as it was.
    show(messages, FilterFailedText);
}

std::optional<int> XpvtDoc::goTo(GoToCommand command, int selectionMark, int itemCount, zdt::MessageSink* messages) {
    if (selectionMark == -1) {
        show(messages, NoRowSelectedText);
        return std::nullopt;
    }
    const bool isBookmarkCommand = command == GoToCommand::PreviousBookmark || command == GoToCommand::NextBookmark;
    if (isBookmarkCommand && bookmarks().empty()) {
        show(messages, command == GoToCommand::PreviousBookmark ? NoPreviousBookmarkText : NoNextBookmarkText);
        return std::nullopt;
    }
    if (!isBookmarkCommand && findResults().empty()) {
        show(messages, NoFindResultsText);
        return std::nullopt;
    }
    int row = -1;
    switch (command) {
    case GoToCommand::PreviousBookmark:
        row = previousBookmark(selectionMark);
        break;
    case GoToCommand::NextBookmark:
        row = nextBookmark(selectionMark);
        break;
    case GoToCommand::FindNext:
        row = nextFindResult(selectionMark);
        break;
    case GoToCommand::FindPrevious:
        row = previousFindResult(selectionMark);
        break;
    }
    if (row < 0 || row >= itemCount)
        return std::nullopt;
    return row;
}

void XpvtDoc::appendXpvtRow(std::string_view row) {
    container().appendRow(row);
    updateAllViews();
}

} // namespace ZDTAnalyzer
