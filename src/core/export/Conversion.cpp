#include "export/Conversion.h"

#include <utility>

namespace ZDTAnalyzer {

zdt::OperationStatus Conversion::convert(ExportFormat format, const std::string& inputPath,
                                         const std::string& outputPath, zdt::MessageSink& messages,
                                         zdt::OperationControl& control) {
    switch (format) {
    case ExportFormat::Html:
        return toHtml(inputPath, outputPath, messages, control);
    case ExportFormat::Rtf:
        return toRtf(inputPath, outputPath, messages, control);
    case ExportFormat::Pdf:
        return toPdf(inputPath, outputPath, messages, control);
    case ExportFormat::Csv:
        return toCsv(inputPath, outputPath, messages, control);
    }
    return zdt::OperationStatus::Failed;
}

zdt::OperationJob ConversionJob(Conversion& conversion, ExportFormat format, std::string inputPath,
                                std::string outputPath) {
    return [&conversion, format, input = std::move(inputPath),
            output = std::move(outputPath)](zdt::MessageSink& messages, zdt::OperationControl& control) {
        return conversion.convert(format, input, output, messages, control);
    };
}

} // namespace ZDTAnalyzer
