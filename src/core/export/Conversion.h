#pragma once

#include "common/Operation.h"

#include <stdexcept>
#include <string>

namespace ZDTAnalyzer {

enum class ExportFormat { Html, Rtf, Pdf, Csv };

// How a view exports its document: each operation converts the trace at `inputPath` into
// `outputPath` as long work. Its boxes go to `messages`; it ends Done only when the output
// stands complete at `outputPath`, and a failure or a cancel leaves nothing there.
class Conversion {
public:
    class Exception : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    virtual ~Conversion() = default;
    virtual zdt::OperationStatus toHtml(const std::string& inputPath, const std::string& outputPath,
                                        zdt::MessageSink& messages, zdt::OperationControl& control) = 0;
    virtual zdt::OperationStatus toRtf(const std::string& inputPath, const std::string& outputPath,
                                       zdt::MessageSink& messages, zdt::OperationControl& control) = 0;
    virtual zdt::OperationStatus toPdf(const std::string& inputPath, const std::string& outputPath,
                                       zdt::MessageSink& messages, zdt::OperationControl& control) = 0;
    virtual zdt::OperationStatus toCsv(const std::string& inputPath, const std::string& outputPath,
                                       zdt::MessageSink& messages, zdt::OperationControl& control) = 0;

    // The operation of `format`.
    zdt::OperationStatus convert(ExportFormat format, const std::string& inputPath, const std::string& outputPath,
                                 zdt::MessageSink& messages, zdt::OperationControl& control);
};

// One export as a job for the model of long work. `conversion` must outlive the job.
zdt::OperationJob ConversionJob(Conversion& conversion, ExportFormat format, std::string inputPath,
                                std::string outputPath);

} // namespace ZDTAnalyzer
