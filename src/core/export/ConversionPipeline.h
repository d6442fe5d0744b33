#pragma once

#include "common/Operation.h"
#include "export/ConversionPaths.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ZDTAnalyzer {

class ToolRunner;

inline constexpr const char* CreateProcessFailedTitle = "E006_001 [Create process failed.]";
inline constexpr const char* CreateProcessFailedText = "Error code: %d !";
inline constexpr const char* TransformationFailedTitle = "E011_001 [XSL Transformation failed.]";
inline constexpr const char* TransformationFailedText = "Error messages:\n\n";
inline constexpr const char* SnpPdfFailedTitle = "E007_002 [Java Conversion Failed]";
inline constexpr const char* SnpPdfFailedText = "Java conversion application errors:\n\n";
inline constexpr const char* XpvtPdfFailedTitle = "E008_009 [Wrong file type]";
inline constexpr const char* XpvtPdfFailedText = "The file does not have SNP content.";
inline constexpr const char* OutputNotWrittenText = "The export could not be written to \"%s\": %s";

// Everything a conversion needs from outside, fixed for its whole life.
struct ConversionSettings {
    ConversionPaths paths = ConversionPaths::installed();
    // The per-run temporary directory, with its trailing "/".
    std::string temporaryDirectory;
    // Chooses the CSV sheet: ';' or ','.
    char listSeparator = ',';
    // A document above this size runs through Xalan in pieces of about this size, so that
    // the tool's memory stays bounded whatever the trace's size; 0 runs every document whole.
    // Xalan-C holds some 25 bytes per byte of a snapshot list while it runs.
    std::uint64_t chunkBytes = std::uint64_t{16} << 20;
    // The same for PDF. The pieces' XSL-FO streams into one formatter, whose memory follows
    // its page sequences, not the document; Xalan holds more per byte with the FO sheet.
    std::uint64_t pdfChunkBytes = std::uint64_t{8} << 20;
};

// The steps every export of one document kind runs: the copy without a second processing
// instruction, then Xalan through the installation's script (twice for RTF) or the kind's
// PDF script. The tools write to a name beside the chosen one, which takes its place only
// when every step succeeded; a failure or a cancel removes it.
class ConversionPipeline {
public:
    ConversionPipeline(ConversionKind kind, ConversionSettings settings);

    zdt::OperationStatus toHtml(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                                zdt::OperationControl& control) const;
    zdt::OperationStatus toRtf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) const;
    zdt::OperationStatus toPdf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) const;
    zdt::OperationStatus toCsv(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) const;

    const ConversionSettings& settings() const { return m_settings; }
    ConversionKind kind() const { return m_kind; }

private:
    // What one export does between making its output and committing it: the tools, the
    // input without its second instruction, and the hidden output path.
    using Stages = std::function<zdt::OperationStatus(ToolRunner& tools, const std::string& strippedInput,
                                                      const std::string& output)>;
    zdt::OperationStatus runStages(const std::string& inputPath, const std::string& outputPath,
                                   zdt::MessageSink& messages, zdt::OperationControl& control,
                                   const Stages& stages) const;
    zdt::OperationStatus runSheet(const std::string& sheet, const std::string& inputPath, const std::string& outputPath,
                                  zdt::MessageSink& messages, zdt::OperationControl& control) const;

    ConversionKind m_kind;
    ConversionSettings m_settings;
    KindSheets m_sheets;
};

} // namespace ZDTAnalyzer
