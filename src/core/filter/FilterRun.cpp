#include "filter/FilterRun.h"
#include "common/OwnedFile.h"

#include "export/ChunkPlan.h"
#include "filter/FilterConditionMap.h"
#include "filter/FilterXQuery701.h"
#include "filter/FilterXQuery702.h"
#include "filter/PieceResultJoiner.h"
#include "filter/PvfltFile.h"
#include "filter/ScratchDirectory.h"
#include "filter/SnpFilterQuery.h"
#include "filter/XQueryEngine.h"

#include "common/TemporaryNumber.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <unistd.h>
#include <vector>

namespace ZDTAnalyzer::Filter {

namespace {

namespace fs = std::filesystem;

// Builds the query over `plainDocumentPath`; `skippedItem`, when not empty, is what a
// filter that leaves an empty string for a dropped child leaves instead.
using QueryBuilder = std::function<std::string(const std::string& plainDocumentPath, const std::string& skippedItem)>;

std::uint64_t pieceBytesFor(const FilterRunTarget& target) {
    if (target.pieceBytes != 0)
        return target.pieceBytes;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(target.documentPath, error);
    return error ? 0 : filterPieceBytes(size, machineMemoryBytes());
}

int containerDepthOf(ConversionKind kind) {
    return kind == ConversionKind::Snapshot ? 1 : 2;
}

struct ErrorBox {
    const char* title;
    const char* format;
};

std::string formatted(const char* format, const std::string& text) {
    std::string message = format;
    const std::size_t at = message.find("%s");
    if (at != std::string::npos)
        message.replace(at, 2, text);
    return message;
}

zdt::OperationStatus fail(const ErrorBox& box, const std::string& text, zdt::MessageSink& messages) {
    messages.showMessage({box.title, formatted(box.format, text), zdt::MessageIcon::Error});
    return zdt::OperationStatus::Failed;
}

// An empty file of a fresh name in the output's directory, so the final rename stays on
// one file system.
std::optional<std::string> makePartialBeside(const std::string& outputPath) {
    const fs::path output(outputPath);
    fs::path directory = output.parent_path();
    if (directory.empty())
        directory = ".";
    std::string pattern = (directory / ("." + output.filename().string() + ".partXXXXXX")).string();
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const int fd = ::mkstemp(buffer.data());
    if (fd < 0)
        return std::nullopt;
    ::close(fd);
    return std::string(buffer.data());
}

void removeQuietly(const std::string& path) {
    std::error_code error;
    fs::remove(path, error);
}

zdt::OperationStatus failedRun(const XQueryRunResult& result, const ErrorBox& box, zdt::MessageSink& messages,
                               const zdt::OperationControl& control) {
    if (control.isCancelRequested())
        return zdt::OperationStatus::Cancelled;
    return fail(box, result.errorText, messages);
}

// Runs the query over every piece of `plan` and joins the results into `outputPath`.
zdt::OperationStatus runPieces(const FilterRunTarget& target, const ChunkPlan& plan, ConversionKind kind,
                               const ScratchDirectory& scratch, const QueryBuilder& buildQuery, const ErrorBox& box,
                               const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) {
    zdt::OwnedFile output(std::fopen(outputPath.c_str(), "wb"));
    if (!output)
        return fail(box, "Could not write the result to " + target.outputPath, messages);
    // A name no document uses, so that the marker is never mistaken for the document's own.
    const std::string marker = "zdt-skipped-" + std::to_string(zdt::TemporaryNumber());
    PieceResultJoiner joiner(containerDepthOf(kind), kind == ConversionKind::Snapshot ? "" : "Trace", marker,
                             output.get());
    const std::string piece = scratch.path() + "piece.xml";
    const std::string pieceResult = scratch.path() + "piece-result.xml";
    for (std::size_t index = 0; index < plan.chunkCount(); ++index) {
        if (control.isCancelRequested())
            return zdt::OperationStatus::Cancelled;
        if (!WriteChunk(plan, index, target.documentPath, piece)) {
            removeQuietly(piece);
            return fail(box, std::string(EngineErrorPrefix) + "Could not write a piece of the document.\n", messages);
        }
        const XQueryRunResult result = runXQueryToFile(
            buildQuery(piece, "processing-instruction " + marker + " {\"\"}"), piece, pieceResult, &control);
        removeQuietly(piece);
        if (!result.succeeded) {
            removeQuietly(pieceResult);
            return failedRun(result, box, messages, control);
        }
        const bool joined = joiner.addPiece(pieceResult);
        removeQuietly(pieceResult);
        if (!joined)
            return fail(box, "Could not write the result to " + target.outputPath, messages);
        control.onProgress(index + 1, plan.chunkCount());
    }
    const bool finished = joiner.finish();
    const bool closed = std::fclose(output.release()) == 0;
    if (!finished || !closed)
        return fail(box, "Could not write the result to " + target.outputPath, messages);
    return zdt::OperationStatus::Done;
}

zdt::OperationStatus runIntoFile(const FilterRunTarget& target, ConversionKind kind, const QueryBuilder& buildQuery,
                                 const ErrorBox& box, zdt::MessageSink& messages, zdt::OperationControl& control) {
    if (control.isCancelRequested())
        return zdt::OperationStatus::Cancelled;
    const std::optional<ScratchDirectory> scratch = ScratchDirectory::create(target.scratchParent);
    if (!scratch)
        return fail(box, std::string(EngineErrorPrefix) + "No temporary directory for the query.\n", messages);
    const std::optional<std::string> partial = makePartialBeside(target.outputPath);
    if (!partial)
        return fail(box, "Could not write the result to " + target.outputPath, messages);

    const std::uint64_t pieceBytes = pieceBytesFor(target);
    const std::optional<ChunkPlan> plan =
        pieceBytes == 0 ? std::nullopt : PlanChunks(target.documentPath, kind, pieceBytes, &control);
    zdt::OperationStatus status = zdt::OperationStatus::Done;
    if (plan) {
        status = runPieces(target, *plan, kind, *scratch, buildQuery, box, *partial, messages, control);
    } else {
        // A document that cannot be cut goes whole, and the engine says what is wrong with it.
        const std::string plainDocument = scratch->plainDocumentPath(target.documentPath);
        const XQueryRunResult result =
            runXQueryToFile(buildQuery(plainDocument, {}), plainDocument, *partial, &control);
        if (!result.succeeded)
            status = failedRun(result, box, messages, control);
    }
    if (status != zdt::OperationStatus::Done) {
        removeQuietly(*partial);
        return status;
    }
    std::error_code error;
    fs::rename(*partial, target.outputPath, error);
    if (error) {
        removeQuietly(*partial);
        return fail(box, "Could not write the result to " + target.outputPath, messages);
    }
    return zdt::OperationStatus::Done;
}

} // namespace

// The engine's process peaks at some 4.5 times the document's bytes plus 300 MB (2.26 GB
// for a 500 MB trace). It may take a quarter of the machine; 2 GB where that is unknown.
std::uint64_t filterPieceBytes(std::uint64_t documentBytes, std::uint64_t machineMemoryBytes) {
    constexpr std::uint64_t MiB = 1ull << 20;
    constexpr std::uint64_t Runtime = 300 * MiB;
    const std::uint64_t budget = machineMemoryBytes == 0 ? 2048 * MiB : machineMemoryBytes / 4;
    if (documentBytes / 2 * 9 + Runtime <= budget)
        return 0;
    const std::uint64_t fitting = budget > Runtime ? (budget - Runtime) / 9 * 2 : 0;
    return std::clamp<std::uint64_t>(fitting, 64 * MiB, 256 * MiB);
}

std::string couldNotLoadFilterText(const std::string& filterPath) {
    return "Could not load filter conditions from file: " + filterPath + " !";
}

zdt::OperationStatus runFilter701(const FilterRunTarget& target, const std::string& filterPath,
                                  zdt::MessageSink& messages, zdt::OperationControl& control) {
    const ErrorBox box{Filter701ErrorTitle, Filter701ErrorFormat};
    XPVT_7_01::FilterConditionMap conditions;
    if (!XPVT_7_01::readFilterFileForRun(filterPath, conditions) || !XPVT_7_01::holdsEveryCondition(conditions))
        return fail(box, couldNotLoadFilterText(filterPath), messages);
    return runIntoFile(
        target, ConversionKind::Xpvt701,
        [&](const std::string& document, const std::string&) {
            return XPVT_7_01::buildFilterXQuery701(document, conditions);
        },
        box, messages, control);
}

zdt::OperationStatus runFilter702(const FilterRunTarget& target, const XPVT_7_02::FilterCondition702& record,
                                  zdt::MessageSink& messages, zdt::OperationControl& control) {
    return runIntoFile(
        target, ConversionKind::Xpvt702,
        [&](const std::string& document, const std::string& skippedItem) {
            return skippedItem.empty()
                       ? XPVT_7_02::buildFilterXQuery702(document, record, XPVT_7_02::MultiValueTests::AnyValue)
                       : XPVT_7_02::buildFilterXQuery702(document, record, XPVT_7_02::MultiValueTests::AnyValue,
                                                         skippedItem);
        },
        {Filter702ErrorTitle, FilterErrorFormat}, messages, control);
}

zdt::OperationStatus listSnapshotServices(const std::string& documentPath, const std::string& scratchParent,
                                          std::set<std::string>& names, zdt::MessageSink& messages,
                                          zdt::OperationControl& control, std::uint64_t pieceBytes) {
    const ErrorBox box{SnpServiceListErrorTitle, FilterErrorFormat};
    if (control.isCancelRequested())
        return zdt::OperationStatus::Cancelled;
    const std::optional<ScratchDirectory> scratch = ScratchDirectory::create(scratchParent);
    if (!scratch)
        return fail(box, std::string(EngineErrorPrefix) + "No temporary directory for the query.\n", messages);
    FilterRunTarget target{documentPath, {}, scratchParent};
    target.pieceBytes = pieceBytes;
    const std::uint64_t bytes = pieceBytesFor(target);
    const std::optional<ChunkPlan> plan =
        bytes == 0 ? std::nullopt : PlanChunks(documentPath, ConversionKind::Snapshot, bytes, &control);
    // The names of the whole are those of its pieces together.
    const std::string piece = scratch->path() + "piece.xml";
    std::set<std::string> found;
    const std::size_t runs = plan ? plan->chunkCount() : 1;
    for (std::size_t index = 0; index < runs; ++index) {
        if (plan && !WriteChunk(*plan, index, documentPath, piece)) {
            removeQuietly(piece);
            return fail(box, std::string(EngineErrorPrefix) + "Could not write a piece of the document.\n", messages);
        }
        const std::string document = plan ? piece : scratch->plainDocumentPath(documentPath);
        const XQueryRunResult result = runXQueryToString(SNP::buildServiceListQuery(document), document, &control);
        removeQuietly(piece);
        if (!result.succeeded)
            return failedRun(result, box, messages, control);
        found.merge(SNP::splitServiceNames(result.resultText));
        if (plan)
            control.onProgress(index + 1, runs);
    }
    names = std::move(found);
    return zdt::OperationStatus::Done;
}

zdt::OperationStatus runSnapshotFilter(const FilterRunTarget& target, const std::vector<std::string>& chosenNames,
                                       zdt::MessageSink& messages, zdt::OperationControl& control) {
    return runIntoFile(
        target, ConversionKind::Snapshot,
        [&](const std::string& document, const std::string&) {
            return SNP::buildSnapshotFilterQuery(document, chosenNames);
        },
        {SnpFilterErrorTitle, FilterErrorFormat}, messages, control);
}

} // namespace ZDTAnalyzer::Filter
