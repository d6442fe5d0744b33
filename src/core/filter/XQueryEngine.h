#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zdt {
class OperationControl;
}

// The XQuery engine behind every filter: Saxon-HE on a Java runtime, run as a child
// process per query. The query goes over in a file; the document is the query's context
// item, and the query's own doc() reaches it by its path as well.
namespace ZDTAnalyzer::Filter {

inline constexpr const char* InitializationFailedText = "Altova XQuery Component initialization failed!";
inline constexpr const char* EngineErrorPrefix = "Altova XQuery Error:\n";

struct XQueryRunResult {
    // True only when the engine finished without an error.
    bool succeeded = false;
    // The query's result as text; only runXQueryToString fills it, on success.
    std::string resultText;
    // Empty on success; otherwise what the caller shows through its "%s".
    std::string errorText;
};

// The programs behind the engine. ZDT_XQUERY_JAVA and ZDT_XQUERY_JAR name them directly;
// otherwise "java" is looked up on PATH and the jar is Debian's Saxon-HE.
struct XQueryEngineLocation {
    std::string java;
    std::string jar;
};
std::optional<XQueryEngineLocation> findXQueryEngine();

// The engine's heap limit in MiB for a document of `documentBytes` on a machine with
// `memoryBytes` of memory: what the document's tree needs with room to spare, at least
// 256 MiB, and never more than three quarters of the machine.
std::uint64_t engineHeapMegabytes(std::uint64_t memoryBytes, std::uint64_t documentBytes);

// MemTotal of /proc/meminfo in bytes; 0 when unknown.
std::uint64_t machineMemoryBytes();

// The query text as the engine reads it, in UTF-8: bytes that are not UTF-8 count as
// Latin-1 letters, as a single-byte code page would read them (the 0xFF that an edited
// 7.01 filter carries becomes "ÿ").
std::string engineQueryText(const std::string& queryText);

// Both runs block until the engine ends. A cancel through `control` kills it; the result
// then fails with an empty errorText. A missing engine fails with InitializationFailedText,
// an engine error with EngineErrorPrefix and the engine's messages.
XQueryRunResult runXQueryToString(const std::string& queryText, const std::string& documentPath,
                                  const zdt::OperationControl* control = nullptr);
// Writes the result document to `outputPath`. What a failed run left there stays.
XQueryRunResult runXQueryToFile(const std::string& queryText, const std::string& documentPath,
                                const std::string& outputPath, const zdt::OperationControl* control = nullptr);

} // namespace ZDTAnalyzer::Filter
