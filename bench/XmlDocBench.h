#pragma once

// What the benchmarks of the XML documents share: the bare Expat reference, the sink
// that prints the document's boxes, the open-only child and the timed opens.

#include "BenchSupport.h"

#include "common/UserMessage.h"

#include <expat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace benchsupport {

// Prints every box the document raises, so a failed open or search says why.
class PrintingSink : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { std::cerr << "message: " << message.text << "\n"; }
    bool askYesNo(const zdt::UserMessage& question) override {
        std::cerr << "question: " << question.text << "\n";
        return false;
    }
};

inline void XMLCALL IgnoreStart(void*, const XML_Char*, const XML_Char**) {}
inline void XMLCALL IgnoreEnd(void*, const XML_Char*) {}
inline void XMLCALL IgnoreText(void*, const XML_Char*, int) {}

// Expat alone: the same reads and blocks as the document's parser, handlers that do nothing.
inline bool BareExpatParse(const std::string& path, std::size_t blockSize) {
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr)
        return false;
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetStartElementHandler(parser, &IgnoreStart);
    XML_SetEndElementHandler(parser, &IgnoreEnd);
    XML_SetCharacterDataHandler(parser, &IgnoreText);
    std::vector<char> buffer(blockSize);
    bool ok = parser != nullptr;
    while (ok) {
        const std::size_t count = std::fread(buffer.data(), 1, blockSize, file);
        if (count == 0)
            break;
        const int isFinal = count < blockSize ? 1 : 0;
        ok = XML_Parse(parser, buffer.data(), static_cast<int>(count), isFinal) != XML_STATUS_ERROR;
    }
    XML_ParserFree(parser);
    std::fclose(file);
    return ok;
}

// The bare Expat reference. One of its runs goes right before each timed run of the
// document, so a machine that is busier in one phase slows both sides of a ratio alike.
class ExpatBaseline {
public:
    ExpatBaseline(const std::string& path, std::size_t blockSize) : m_path(path), m_blockSize(blockSize) {}

    void Run() {
        const auto start = Clock::now();
        const bool parsed = BareExpatParse(m_path, m_blockSize);
        const double seconds = SecondsSince(start);
        m_failed = m_failed || !parsed;
        m_best = m_runs == 0 ? seconds : std::min(m_best, seconds);
        ++m_runs;
    }

    // Bytes a second of the best run; 0 when a run failed or none ran.
    double Report(const std::string& phase, double bytes, Verdicts& verdicts) const {
        if (m_failed || m_runs == 0) {
            verdicts.Check("bare Expat parse " + phase, false, "the file is not well-formed");
            return 0;
        }
        std::cout << "bare Expat " << phase << ": " << Speed(bytes, m_best) << " (best of " << m_runs << ")\n";
        return bytes / m_best;
    }

private:
    std::string m_path;
    std::size_t m_blockSize;
    double m_best = 0;
    int m_runs = 0;
    bool m_failed = false;
};

// The child that only opens: prints its memory figures and the row count for the parent.
template <typename Document>
int OpenOnly(const std::string& path, const std::string& swapParent, const std::string& swapPrefix) {
    ScratchDirectory swap(swapParent, swapPrefix);
    if (!swap.ok())
        return 1;
    PrintingSink messages;
    Document document;
    if (!document.OnOpenDocument(path, swap.path(), &messages))
        return 1;
    PrintMemoryFigures();
    std::cout << "rows=" << document.container().rowCount() << "\n";
    return 0;
}

// Opens `runs` times, each into the same swap directory after the last document went,
// each after a baseline run; the last document stays open in `kept`. False (and `kept`
// empty) when an open failed.
template <typename Document>
bool TimedOpens(int runs, const std::string& path, const ScratchDirectory& swap, std::unique_ptr<Document>& kept,
                ExpatBaseline& baseline, double& best) {
    PrintingSink messages;
    const bool ok = BestOf(runs, best, [&](double& seconds) {
        baseline.Run();
        kept.reset(); // the previous swap file goes before the next one is written
        kept = std::make_unique<Document>();
        const auto start = Clock::now();
        const bool opened = kept->OnOpenDocument(path, swap.path(), &messages);
        seconds = SecondsSince(start);
        return opened;
    });
    if (!ok)
        kept.reset();
    return ok;
}

// Every row must be on the swap file once the open returns, the last flush included.
template <typename Rows> void CheckSwapFileComplete(const std::string& name, Rows& rows, Verdicts& verdicts) {
    std::error_code error;
    const auto onFile = std::filesystem::file_size(rows.swapFileName(), error);
    verdicts.Check(name, !error && onFile == rows.endOffset(),
                   std::to_string(error ? 0 : onFile) + " bytes on file, rows end at " +
                       std::to_string(rows.endOffset()));
}

// Timed runs of a search of the open document, each after a baseline run.
template <typename Search> bool TimedSearches(int runs, ExpatBaseline& baseline, double& best, Search search) {
    return BestOf(runs, best, [&](double& seconds) {
        baseline.Run();
        const auto start = Clock::now();
        const bool found = search();
        seconds = SecondsSince(start);
        return found;
    });
}

} // namespace benchsupport
