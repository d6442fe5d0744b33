#include "ClassicCommands.h"

#include "StderrMessages.h"
#include "app/BrandEdition.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicRowFormatter.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
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

// Formats rows [first, end) into `text`, one tab-separated line each.
void FormatRows(ClassicRowFormatter& formatter, zdt::RowIndex first, zdt::RowIndex end, std::string& text) {
    for (zdt::RowIndex row = first; row < end; ++row)
        formatter.AppendRowLine(row, text);
}

int RunClassicRows(const CliArguments& args) {
    RequireFiles(args, 1);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    // Two formatters, each with its own reader, take turns at blocks of rows; the
    // blocks are written in row order.
    constexpr zdt::RowCount kBlockRows = 32768;
    ClassicRowFormatter formatters[2] = {ClassicRowFormatter(doc), ClassicRowFormatter(doc)};
    std::string texts[2];
    const zdt::RowCount rows = doc.GetVisibleCount();
    // Block ends are taken from what is left, so that no sum passes the last row.
    for (zdt::RowIndex first = 0, end = 0; first < rows; first = end) {
        const zdt::RowIndex middle = first + std::min(kBlockRows, rows - first);
        end = middle + std::min(kBlockRows, rows - middle);
        texts[0].clear();
        texts[1].clear();
        std::thread second;
        if (middle < end)
            second = std::thread([&] { FormatRows(formatters[1], middle, end, texts[1]); });
        FormatRows(formatters[0], first, middle, texts[0]);
        if (second.joinable())
            second.join();
        std::fwrite(texts[0].data(), 1, texts[0].size(), stdout);
        std::fwrite(texts[1].data(), 1, texts[1].size(), stdout);
    }
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
