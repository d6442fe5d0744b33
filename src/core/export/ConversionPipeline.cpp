#include "export/ConversionPipeline.h"

#include "export/ChunkPlan.h"
#include "export/ChunkRowCount.h"
#include "export/FormatterPipe.h"
#include "export/PartialOutput.h"
#include "export/RemoveSecondInstruction.h"
#include "export/TemporaryName.h"
#include "export/ToolRunner.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

namespace ZDTAnalyzer {
namespace {

namespace fs = std::filesystem;
using zdt::OperationStatus;

// Removes a temporary file when the step that needs it is over.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string path) : m_path(std::move(path)) {}
    ~TemporaryFile() { std::remove(m_path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// The tools take paths from wherever they run; a relative name is made whole here.
std::string absolutePath(const std::string& path) {
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    return error ? path : absolute.string();
}

std::uint64_t fileSize(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? 0 : static_cast<std::uint64_t>(size);
}

OperationStatus statusOf(ProcessOutcome outcome) {
    switch (outcome) {
    case ProcessOutcome::Succeeded:
        return OperationStatus::Done;
    case ProcessOutcome::Cancelled:
        return OperationStatus::Cancelled;
    case ProcessOutcome::NotStarted:
    case ProcessOutcome::Failed:
        break;
    }
    return OperationStatus::Failed;
}

std::string chunkPosition(std::size_t index, std::size_t count) {
    if (index == 0)
        return "'first'";
    return index + 1 == count ? "'last'" : "'middle'";
}

void showWriteFailure(zdt::MessageSink& messages, const std::string& outputPath, const std::string& reason) {
    char text[4096];
    std::snprintf(text, sizeof text, OutputNotWrittenText, outputPath.c_str(), reason.c_str());
    messages.showMessage({"", text, zdt::MessageIcon::Error});
}

OperationStatus commitOutput(PartialOutput& output, const std::string& outputPath, zdt::MessageSink& messages) {
    std::string reason;
    if (output.commit(reason))
        return OperationStatus::Done;
    showWriteFailure(messages, outputPath, reason);
    return OperationStatus::Failed;
}

// The hidden name beside the chosen one, made before any tool runs.
bool createOutput(PartialOutput& output, const std::string& outputPath, zdt::MessageSink& messages) {
    std::string reason;
    if (output.create(reason))
        return true;
    showWriteFailure(messages, outputPath, reason);
    return false;
}

bool appendFile(const std::string& source, std::ofstream& target) {
    std::ifstream in(source, std::ios::binary);
    if (!in)
        return false;
    target << in.rdbuf();
    return static_cast<bool>(target);
}

// One piece of a planned document, written out with its row numbering.
struct ChunkRun {
    std::size_t index = 0;
    std::string document;
    SheetParameters parameters;
    zdt::RowCount rows = 0;
};

// Writes piece `index` and learns how many rows it makes, so that the next piece's line
// numbers go on where this one's end.
std::optional<ChunkRun> prepareChunk(const ChunkPlan& plan, std::size_t index, const std::string& source,
                                     ConversionKind kind, zdt::RowCount firstLine,
                                     const SheetParameters& documentParameters, ToolRunner& tools) {
    ChunkRun chunk{index, tools.temporary(TmpTxtExtension), {}, 0};
    if (!WriteChunk(plan, index, source, chunk.document)) {
        std::remove(chunk.document.c_str());
        showWriteFailure(tools.messages(), chunk.document, std::strerror(errno));
        return std::nullopt;
    }
    const std::optional<zdt::RowCount> rows =
        CountListRows(chunk.document, kind, fs::path(chunk.document).parent_path().string() + "/", tools.messages());
    if (!rows) {
        std::remove(chunk.document.c_str());
        return std::nullopt;
    }
    chunk.rows = *rows;
    chunk.parameters = documentParameters;
    chunk.parameters.emplace_back("chunk", chunkPosition(index, plan.chunkCount()));
    chunk.parameters.emplace_back("first-line", std::to_string(firstLine));
    return chunk;
}

std::optional<ChunkPlan> planFor(const std::string& path, ConversionKind kind, std::uint64_t chunkBytes,
                                 const zdt::OperationControl& control) {
    if (chunkBytes == 0 || fileSize(path) <= chunkBytes)
        return std::nullopt;
    return PlanChunks(path, kind, chunkBytes, &control);
}

// Xalan over each piece, the outputs one after the other in `output`.
OperationStatus runSheetInChunks(const ChunkPlan& plan, const std::string& source, const std::string& sheet,
                                 ConversionKind kind, const SheetParameters& documentParameters,
                                 const std::string& output, ToolRunner& tools) {
    std::ofstream joined(output, std::ios::binary | std::ios::trunc);
    zdt::RowCount firstLine = 1;
    for (std::size_t index = 0; index < plan.chunkCount(); ++index) {
        const std::optional<ChunkRun> chunk =
            prepareChunk(plan, index, source, kind, firstLine, documentParameters, tools);
        if (!chunk)
            return OperationStatus::Failed;
        const TemporaryFile document(chunk->document);
        const TemporaryFile piece(tools.temporary(TmpTxtExtension));
        const ProcessOutcome outcome = tools.xalan(chunk->document, sheet, piece.path(), chunk->parameters);
        if (outcome != ProcessOutcome::Succeeded)
            return statusOf(outcome);
        if (!appendFile(piece.path(), joined))
            return OperationStatus::Failed;
        firstLine += chunk->rows;
        if (!tools.control().onProgress(plan.cuts[index + 1], plan.fileSize))
            return OperationStatus::Cancelled;
    }
    joined.close();
    return joined ? OperationStatus::Done : OperationStatus::Failed;
}

// The FO sheet over each piece, the parts streaming into one formatter as they are made:
// the formatter lays out one piece while Xalan makes the next.
OperationStatus runPdfInChunks(const ChunkPlan& plan, const std::string& source, ConversionKind kind,
                               const std::string& foSheet, const SheetParameters& documentParameters,
                               const std::string& output, ToolRunner& tools) {
    const std::string pipePath = tools.temporary(".fo");
    const ToolRunner::Formatter formatter = tools.formatter(pipePath, output);
    const TemporaryFile formatterOutput(formatter.standardOutput);
    const TemporaryFile formatterError(formatter.standardError);
    FormatterPipe pipe(pipePath, formatter.arguments, tools.control());
    OperationStatus status = OperationStatus::Done;
    bool fedWhole = true;
    zdt::RowCount firstLine = 1;
    for (std::size_t index = 0; index < plan.chunkCount() && status == OperationStatus::Done; ++index) {
        const std::optional<ChunkRun> chunk =
            prepareChunk(plan, index, source, kind, firstLine, documentParameters, tools);
        if (!chunk) {
            status = OperationStatus::Failed;
            break;
        }
        const TemporaryFile document(chunk->document);
        std::string part = tools.temporary(TmpTxtExtension);
        const ProcessOutcome outcome = tools.xalanForPdf(chunk->document, foSheet, part, chunk->parameters);
        if (outcome != ProcessOutcome::Succeeded) {
            std::remove(part.c_str());
            status = statusOf(outcome);
        } else if (!pipe.append(std::move(part))) {
            fedWhole = false; // the formatter has ended early: its run tells why
            break;
        }
        firstLine += chunk->rows;
        if (status == OperationStatus::Done && !tools.control().onProgress(plan.cuts[index + 1], plan.fileSize))
            status = OperationStatus::Cancelled;
    }
    ProcessRun run = pipe.finish();
    if (status != OperationStatus::Done)
        return status; // its box is up; the formatter only saw its input cut short
    // A formatter that ended well before it had the whole document made no whole PDF.
    if (!fedWhole && run.outcome == ProcessOutcome::Succeeded)
        run.outcome = ProcessOutcome::Failed;
    return statusOf(tools.reportPdf(run, formatter));
}

// What every sheet is told about the document: its path, for the session information.
SheetParameters documentParameters(const std::string& inputPath) {
    return {{"file-name", XPathStringLiteral(inputPath)}};
}

} // namespace

ConversionPipeline::ConversionPipeline(ConversionKind kind, ConversionSettings settings)
    : m_kind(kind), m_settings(std::move(settings)), m_sheets(m_settings.paths.sheets(kind)) {}

OperationStatus ConversionPipeline::runStages(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control,
                                              const Stages& stages) const {
    ToolRunner tools(m_settings, m_kind, messages, control);
    PartialOutput output(absolutePath(outputPath));
    if (!createOutput(output, outputPath, messages))
        return OperationStatus::Failed;
    const TemporaryFile stripped(tools.temporary(TmpTxtExtension));
    removeSecondInstruction(inputPath, stripped.path());
    const OperationStatus status = stages(tools, stripped.path(), output.path());
    if (status != OperationStatus::Done)
        return status;
    return commitOutput(output, outputPath, messages);
}

OperationStatus ConversionPipeline::runSheet(const std::string& sheet, const std::string& inputPath,
                                             const std::string& outputPath, zdt::MessageSink& messages,
                                             zdt::OperationControl& control) const {
    return runStages(
        inputPath, outputPath, messages, control,
        [&](ToolRunner& tools, const std::string& stripped, const std::string& output) {
            OperationStatus status = OperationStatus::Done;
            if (const std::optional<ChunkPlan> plan = planFor(stripped, m_kind, m_settings.chunkBytes, control))
                status = runSheetInChunks(*plan, stripped, sheet, m_kind, documentParameters(inputPath), output, tools);
            else if (control.isCancelRequested())
                status = OperationStatus::Cancelled;
            else
                status = statusOf(tools.xalan(stripped, sheet, output, documentParameters(inputPath)));
            if (status != OperationStatus::Done && control.isCancelRequested())
                return OperationStatus::Cancelled;
            return status;
        });
}

OperationStatus ConversionPipeline::toHtml(const std::string& inputPath, const std::string& outputPath,
                                           zdt::MessageSink& messages, zdt::OperationControl& control) const {
    return runSheet(m_sheets.html, inputPath, outputPath, messages, control);
}

OperationStatus ConversionPipeline::toCsv(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) const {
    return runSheet(m_settings.listSeparator == ';' ? m_sheets.csvSemicolon : m_sheets.csvComma, inputPath, outputPath,
                    messages, control);
}

OperationStatus ConversionPipeline::toRtf(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) const {
    return runStages(inputPath, outputPath, messages, control,
                     [&](ToolRunner& tools, const std::string& stripped, const std::string& output) {
                         const TemporaryFile stage1(tools.temporary(TmpTxtExtension));
                         const ProcessOutcome first =
                             tools.xalan(stripped, m_sheets.rtfStage1, stage1.path(), documentParameters(inputPath));
                         // Only a tool that ran and failed stops the pipeline; one that never started does not.
                         if (first == ProcessOutcome::Failed || first == ProcessOutcome::Cancelled)
                             return statusOf(first);
                         const ProcessOutcome second = tools.xalan(stage1.path(), m_sheets.rtfStage2, output);
                         if (first != ProcessOutcome::Succeeded || second != ProcessOutcome::Succeeded)
                             return second == ProcessOutcome::Cancelled ? OperationStatus::Cancelled
                                                                        : OperationStatus::Failed;
                         return OperationStatus::Done;
                     });
}

OperationStatus ConversionPipeline::toPdf(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) const {
    return runStages(
        inputPath, outputPath, messages, control,
        [&](ToolRunner& tools, const std::string& stripped, const std::string& output) {
            OperationStatus status = OperationStatus::Done;
            if (const std::optional<ChunkPlan> plan = planFor(stripped, m_kind, m_settings.pdfChunkBytes, control))
                status =
                    runPdfInChunks(*plan, stripped, m_kind, m_sheets.fo, documentParameters(inputPath), output, tools);
            else if (control.isCancelRequested())
                status = OperationStatus::Cancelled;
            else
                status = statusOf(tools.pdf(stripped, output, documentParameters(inputPath)));
            if (status != OperationStatus::Done && control.isCancelRequested())
                return OperationStatus::Cancelled;
            return status;
        });
}

} // namespace ZDTAnalyzer
