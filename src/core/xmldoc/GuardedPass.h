#pragma once

#include "common/RowTypes.h"
#include "common/UserMessage.h"
#include "xmldoc/FileContainer.h"

#include <filesystem>
#include <string>

namespace ZDTAnalyzer {

// Shows a document's failure text as an error box, when somebody listens.
inline void showDocumentError(zdt::MessageSink* messages, const std::string& text) {
    if (messages != nullptr)
        messages->showMessage(zdt::UserMessage{"", text, zdt::MessageIcon::Error});
}

// Feeds a parser's block progress to the sink, against the file's size.
template <typename Parser>
typename Parser::ProgressCallback progressOf(zdt::ProgressSink* progress, const std::string& path) {
    if (progress == nullptr)
        return {};
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    const zdt::FileOffset total = error ? 0 : size;
    return [progress, total](zdt::FileOffset done) { return progress->onProgress(done, total); };
}

// Runs one pass of an XML document over its file and shows its failure the way every
// XML document does: the parser's text, then the container's, then `unknownText` for
// anything else. A cancel shows nothing and runs `onCancel`. True when the pass ended.
template <typename Parser, typename Pass, typename OnCancel>
bool runGuardedPass(zdt::MessageSink* messages, const char* unknownText, Pass&& pass, OnCancel&& onCancel) {
    try {
        pass();
        return true;
    } catch (const typename Parser::Cancelled&) {
        onCancel();
    } catch (const typename Parser::Exception& error) {
        showDocumentError(messages, error.message());
    } catch (const FileContainerBase::Exception& error) {
        showDocumentError(messages, error.message());
    } catch (...) {
        showDocumentError(messages, unknownText);
    }
    return false;
}

} // namespace ZDTAnalyzer
