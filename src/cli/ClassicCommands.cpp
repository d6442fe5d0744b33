#include "ClassicCommands.h"

#include "StderrMessages.h"
#include "app/BrandEdition.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicRowFormatter.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

namespace {

void RequireFiles(const CliArguments& args, std::size_t count) {
    if (args.files.size() != count)
        throw UsageError{args.command + " takes " + (count == 1 ? std::string("one file") : std::string("two files"))};
}

std::string BaseName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Opens the document as the application does and applies the view options. The
// history's filter is not offered again, and nothing is ever written into the trace.
bool OpenClassic(CAnalyzerDoc& doc, const std::string& path, const ClassicViewOptions& view) {
    StderrMessages messages;
    if (!doc.OnOpenDocument(path, &messages))
        return false;
    if (!view.canFilter.empty()) {
        if (!std::ifstream(view.canFilter).good())
            std::fprintf(stderr, "warning: cannot read the filter file %s\n", view.canFilter.c_str());
        doc.ApplyFilter(view.canFilter, BaseName(view.canFilter));
    }
    const auto byteTime = static_cast<std::uint32_t>(ByteTimeMicros(view.baudrate, view.dataBits, view.stopBits));
    doc.SetTimeMode(view.timeMode, byteTime);
    return true;
}

class OutputBuffer {
public:
    ~OutputBuffer() { Flush(); }
    std::string& Text() { return m_text; }
    void FlushIfFull() {
        if (m_text.size() >= (1u << 20))
            Flush();
    }
    void Flush() {
        std::fwrite(m_text.data(), 1, m_text.size(), stdout);
        m_text.clear();
    }

private:
    std::string m_text;
};

} // namespace

namespace {

// Formats the rows in blocks on two threads and writes the blocks in row order from the
// calling thread. A thread takes the next block as soon as it is done with one, so neither
// waits for the other, and a few finished blocks may wait for the writer.
class RowBlockPipeline {
public:
    explicit RowBlockPipeline(CAnalyzerDoc& doc) : m_doc(doc), m_rows(doc.GetVisibleCount()) {}

    void Run() {
        if (m_rows <= 0)
            return;
        m_blockCount = (static_cast<std::int64_t>(m_rows) + kBlockRows - 1) / kBlockRows;
        std::thread second([this] { Format(); });
        std::thread first([this] { Format(); });
        Write();
        first.join();
        second.join();
    }

private:
    static constexpr zdt::RowCount kBlockRows = 32768;
    static constexpr std::int64_t kSlots = 4;

    struct Slot {
        std::string text;
        bool ready = false;
    };

    void Format() {
        // Each thread reads through a formatter of its own.
        ClassicRowFormatter formatter(m_doc);
        for (;;) {
            std::int64_t block = 0;
            {
                std::unique_lock lock(m_mutex);
                if (m_nextBlock == m_blockCount)
                    return;
                block = m_nextBlock++;
                // The slot is free once the block kSlots ahead of this one is written.
                m_slotFree.wait(lock, [&] { return block < m_written + kSlots; });
            }
            Slot& slot = m_slots[block % kSlots];
            slot.text.clear();
            const auto first = static_cast<zdt::RowIndex>(block * kBlockRows);
            // Block ends are taken from what is left, so that no sum passes the last row.
            formatter.AppendRowLines(first, first + std::min(kBlockRows, m_rows - first), slot.text);
            {
                std::lock_guard lock(m_mutex);
                slot.ready = true;
            }
            m_slotReady.notify_one();
        }
    }

    void Write() {
        for (std::int64_t block = 0; block < m_blockCount; ++block) {
            Slot& slot = m_slots[block % kSlots];
            {
                std::unique_lock lock(m_mutex);
                m_slotReady.wait(lock, [&] { return slot.ready; });
            }
            std::fwrite(slot.text.data(), 1, slot.text.size(), stdout);
            {
                std::lock_guard lock(m_mutex);
                slot.ready = false;
                m_written = block + 1;
            }
            m_slotFree.notify_all();
        }
    }

    CAnalyzerDoc& m_doc;
    const zdt::RowCount m_rows;
    std::int64_t m_blockCount = 0;
    std::mutex m_mutex;
    std::condition_variable m_slotReady;
    std::condition_variable m_slotFree;
    std::int64_t m_nextBlock = 0;
    std::int64_t m_written = 0;
    Slot m_slots[kSlots];
};

} // namespace

int RunClassicRows(const CliArguments& args) {
    RequireFiles(args, 1);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    RowBlockPipeline(doc).Run();
    std::fflush(stdout);
    doc.OnCloseDocument(false);
    return 0;
}

int RunClassicInfo(const CliArguments& args) {
    RequireFiles(args, 1);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    for (const auto& [label, value] : SessionInfoFields(doc, zdt::BrandEdition()))
        std::printf("%s %s\n", label.c_str(), value.c_str());
    doc.OnCloseDocument(false);
    return 0;
}

int RunClassicSbt(const CliArguments& args) {
    RequireFiles(args, 2);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    const bool written = WriteSbtReport(doc, args.files[1], zdt::BrandEdition());
    doc.OnCloseDocument(false);
    if (!written) {
        std::fprintf(stderr, "cannot write %s\n", args.files[1].c_str());
        return 1;
    }
    return 0;
}

int RunClassicFind(const CliArguments& args) {
    RequireFiles(args, 1);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    // The criteria arrive as the dialog would hold them: typed into its edits and
    // checked only where the dialog enables the check.
    ClassicFindCriteria criteria = args.criteria;
    std::vector<std::string> refusals;
    criteria.minTime = criteria.minTime.substr(0, MaxTimeTextLength);
    criteria.maxTime = criteria.maxTime.substr(0, MaxTimeTextLength);
    criteria.dataText = TypeIntoHexEdit(criteria.dataText, false, MaxDataTextLength, &refusals);
    criteria.identifierText = TypeIntoHexEdit(criteria.identifierText, true, MaxIdentifierTextLength, &refusals);
    for (const std::string& refusal : refusals)
        std::fprintf(stderr, "%s\n", refusal.c_str());
    ApplyEnabling(criteria, FindEnabling(doc.SchemaNumber(), doc.HasClass0(), doc.HasClass4(), doc.HasClass8()));

    const FindOkResult ok = ValidateFindCriteria(criteria);
    if (ok.staysOpen) {
        std::fprintf(stderr, "%s\n", ok.message.c_str());
        return 1;
    }
    if (ok.hasCriteria)
        ScanClassicTrace(doc, criteria, args.markAll);
    if (doc.FindResults().empty()) {
        std::fprintf(stderr, "%s\n", NothingFoundText);
    } else {
        OutputBuffer out;
        for (const zdt::RowIndex row : doc.FindResults()) {
            out.Text() += std::to_string(row + 1);
            out.Text() += '\n';
        }
    }
    doc.OnCloseDocument(false);
    return 0;
}
