#include "ClassicCommands.h"

#include "StderrMessages.h"
#include "app/BrandEdition.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicRowFormatter.h"
#include "classic/TextFormat.h"

#include <cstdio>
#include <fstream>
#include <string>

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

int RunClassicRows(const CliArguments& args) {
    RequireFiles(args, 1);
    CAnalyzerDoc doc;
    if (!OpenClassic(doc, args.files[0], args.view))
        return 1;
    ClassicRowFormatter formatter(doc);
    OutputBuffer out;
    const std::uint32_t rows = doc.GetVisibleCount();
    ClassicRow formatted;
    for (std::uint32_t row = 0; row < rows; ++row) {
        formatter.Format(row, formatted);
        std::string& text = out.Text();
        textformat::AppendUnsigned(text, row + 1);
        text += '\t';
        text += formatted.mark;
        for (const std::string& column : formatted.columns) {
            text += '\t';
            text += column;
        }
        text += '\n';
        out.FlushIfFull();
    }
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
        for (const std::uint32_t row : doc.FindResults()) {
            out.Text() += std::to_string(row + 1);
            out.Text() += '\n';
        }
    }
    doc.OnCloseDocument(false);
    return 0;
}
