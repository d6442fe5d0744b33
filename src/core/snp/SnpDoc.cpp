#include "snp/SnpDoc.h"

#include "snp/ConsumerFindInterface.h"

#include <filesystem>

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
    try {
        container().createSwapFile(swapDirectory);
        m_consumer.document = this;
        m_context.consumer = &m_consumer;
        m_parser.parse(m_pathName.c_str(), m_context, progressOf<Snp::UserInterfaceParser>(progress, m_pathName));
        // Buffered rows go on file now, so that a full disk fails the open.
        container().flush();
        return true;
    } catch (const Snp::UserInterfaceParser::Cancelled&) {
        return false;
    } catch (const Snp::UserInterfaceParser::Exception& error) {
        show(messages, error.message());
    } catch (const FileContainerBase::Exception& error) {
        show(messages, error.message());
    } catch (...) {
        show(messages, OpenFailedText);
    }
    return false;
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
        show(messages, SessionInformationFailedText);
    }
}

bool SnpDoc::find(const SnpFindCriteria& criteria, zdt::MessageSink* messages, zdt::ProgressSink* progress) {
    try {
        clearFindResults();
        Snp::ConsumerFindInterface consumer{this, &criteria, 0};
        ConsumerContext<Snp::ConsumerFindInterface> context(&consumer);
        Snp::FindParser parser;
        parser.parse(m_pathName.c_str(), context, progressOf<Snp::FindParser>(progress, m_pathName));
        parser.release();
        updateAllViews();
        return true;
    } catch (const Snp::FindParser::Cancelled&) {
        // The marks made so far are real marks: let the views show them.
        updateAllViews();
        return false;
    } catch (const Snp::FindParser::Exception& error) {
        show(messages, error.message());
    } catch (const FileContainerBase::Exception& error) {
        show(messages, error.message());
    } catch (...) {
        show(messages, SearchFailedText);
    }
    return false;
}

std::optional<int> SnpDoc::goTo(GoToCommand command, int selectionMark, int itemCount, zdt::MessageSink* messages) {
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
    case GoToCommand::PreviousBookmark: row = previousBookmark(selectionMark); break;
    case GoToCommand::NextBookmark: row = nextBookmark(selectionMark); break;
    case GoToCommand::FindNext: row = nextFindResult(selectionMark); break;
    case GoToCommand::FindPrevious: row = previousFindResult(selectionMark); break;
    }
    if (row < 0 || row >= itemCount)
        return std::nullopt;
    return row;
}

void SnpDoc::appendSnapshotRow(std::string_view row) {
    container().appendRow(row);
    updateAllViews();
}

} // namespace ZDTAnalyzer
