#include "filter/XQueryEngine.h"

#include "common/ChildProcess.h"
#include "common/Operation.h"
#include "filter/ScratchDirectory.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace ZDTAnalyzer::Filter {

namespace {

constexpr const char* DebianSaxonJar = "/usr/share/java/Saxon-HE.jar";
constexpr const char* SaxonQueryClass = "net.sf.saxon.Query";
constexpr std::uint64_t MiB = 1024 * 1024;
// How the runtime ends under -XX:+ExitOnOutOfMemoryError; its note goes to standard output.
constexpr int JavaOutOfMemoryExitCode = 3;
// Saxon's note when the query never looks at its context item; no error.
constexpr const char* SourceIgnoredNote = "Source document ignored - query does not access the context item";

std::string environmentOr(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? std::string(value) : fallback;
}

bool isExecutable(const std::string& path) {
    return !path.empty() && ::access(path.c_str(), X_OK) == 0 && !std::filesystem::is_directory(path);
}

bool isReadableFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), R_OK) == 0;
}

std::uint64_t fileSize(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : static_cast<std::uint64_t>(size);
}

bool writeWholeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    return !out.fail();
}

// Length of the UTF-8 sequence starting at `at`, or 0 when it is not one.
std::size_t utf8SequenceLength(const std::string& text, std::size_t at) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    std::size_t length = 0;
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4;
    else
        return 0;
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
    // Overlong forms and values beyond U+10FFFF or in the surrogate range.
    const unsigned char second = byte(at + 1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
        return 0;
    return length;
}

// Removes Saxon's note on an unused source; everything else it said stays.
std::string engineMessages(const std::string& standardError) {
    std::istringstream lines(standardError);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (line == SourceIgnoredNote)
            continue;
        kept += line;
        kept += '\n';
    }
    return kept;
}

XQueryRunResult failure(std::string errorText) {
    XQueryRunResult result;
    result.errorText = std::move(errorText);
    return result;
}

XQueryRunResult runEngine(const std::string& queryText, const std::string& documentPath, const std::string* outputPath,
                          const zdt::OperationControl* control) {
    const std::optional<XQueryEngineLocation> engine = findXQueryEngine();
    if (!engine)
        return failure(InitializationFailedText);
    std::optional<ScratchDirectory> scratch = ScratchDirectory::create();
    if (!scratch)
        return failure(std::string(EngineErrorPrefix) + "No temporary directory for the query.\n");
    const std::string queryFile = scratch->path() + "query.xq";
    if (!writeWholeFile(queryFile, engineQueryText(queryText)))
        return failure(std::string(EngineErrorPrefix) + "Could not write the query to " + queryFile + ".\n");

    const std::uint64_t heap = engineHeapMegabytes(machineMemoryBytes(), fileSize(documentPath));
    zdt::ChildProcessCommand command;
    command.arguments = {engine->java, "-Xmx" + std::to_string(heap) + "m",
                         // Throughput matters more than pauses, and a heap that runs full ends
                         // the engine at once instead of letting it crawl.
                         "-XX:+UseParallelGC", "-XX:+ExitOnOutOfMemoryError", "-Dfile.encoding=UTF-8", "-cp",
                         engine->jar, SaxonQueryClass, "-q:" + queryFile, "-s:" + documentPath};
    if (outputPath != nullptr)
        command.arguments.push_back("-o:" + *outputPath);
    else
        command.arguments.push_back("!omit-xml-declaration=yes");
    // With -o the engine writes nothing else there but the runtime's last words on memory.
    command.standardOutput = zdt::ChildStream::capture();
    command.standardError = zdt::ChildStream::capture();
    // Java takes file names and its default encoding from the locale.
    command.environment = {{"LC_ALL", "C.UTF-8"}};

    const zdt::ChildProcessResult run = zdt::RunChildProcess(command, control);
    using End = zdt::ChildProcessResult::End;
    if (run.end == End::Cancelled)
        return failure({});
    if (run.end == End::NotStarted)
        return failure(InitializationFailedText);
    if (run.succeeded()) {
        XQueryRunResult result;
        result.succeeded = true;
        if (outputPath == nullptr)
            result.resultText = run.standardOutput;
        return result;
    }
    const bool outOfMemory =
        run.standardError.find("OutOfMemoryError") != std::string::npos ||
        (outputPath != nullptr && run.standardOutput.find("OutOfMemoryError") != std::string::npos) ||
        (run.end == End::Exited && run.exitCode == JavaOutOfMemoryExitCode);
    if (outOfMemory)
        return failure(std::string(EngineErrorPrefix) + "The query needs more memory than the " + std::to_string(heap) +
                       " MB it was given for " + documentPath + ".\n" + engineMessages(run.standardError));
    std::string messages = engineMessages(run.standardError);
    if (messages.empty())
        messages = run.end == End::Signalled ? "The engine was ended by signal " + std::to_string(run.signal) + ".\n"
                                             : "The engine ended with code " + std::to_string(run.exitCode) + ".\n";
    return failure(std::string(EngineErrorPrefix) + messages);
}

} // namespace

std::optional<XQueryEngineLocation> findXQueryEngine() {
    XQueryEngineLocation location;
    const std::string javaDirectory = zdt::FindProgramOnPath("java");
    location.java = environmentOr("ZDT_XQUERY_JAVA", javaDirectory.empty() ? std::string() : javaDirectory + "/java");
    location.jar = environmentOr("ZDT_XQUERY_JAR", DebianSaxonJar);
    if (!isExecutable(location.java) || !isReadableFile(location.jar))
        return std::nullopt;
    return location;
}

std::uint64_t engineHeapMegabytes(std::uint64_t memoryBytes, std::uint64_t documentBytes) {
    // Saxon's tree takes some four to five times the document's bytes; the result and the
    // runtime come on top.
    const std::uint64_t wanted = 256 * MiB + documentBytes * 6;
    const std::uint64_t ceiling = memoryBytes == 0 ? wanted : memoryBytes / 4 * 3;
    return std::max<std::uint64_t>(256, std::min(wanted, ceiling) / MiB);
}

std::uint64_t machineMemoryBytes() {
    std::ifstream meminfo("/proc/meminfo");
    for (std::string name; meminfo >> name;) {
        std::uint64_t kilobytes = 0;
        meminfo >> kilobytes;
        if (name == "MemTotal:")
            return kilobytes * 1024;
        meminfo.ignore(1 << 10, '\n');
    }
    return 0;
}

std::string engineQueryText(const std::string& queryText) {
    std::string text;
    text.reserve(queryText.size());
    for (std::size_t at = 0; at < queryText.size();) {
        const std::size_t length = utf8SequenceLength(queryText, at);
        if (length != 0) {
            text.append(queryText, at, length);
            at += length;
            continue;
        }
        const auto byte = static_cast<unsigned char>(queryText[at++]);
        text += static_cast<char>(0xC0 | (byte >> 6));
        text += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return text;
}

XQueryRunResult runXQueryToString(const std::string& queryText, const std::string& documentPath,
                                  const zdt::OperationControl* control) {
    return runEngine(queryText, documentPath, nullptr, control);
}

XQueryRunResult runXQueryToFile(const std::string& queryText, const std::string& documentPath,
                                const std::string& outputPath, const zdt::OperationControl* control) {
    return runEngine(queryText, documentPath, &outputPath, control);
}

} // namespace ZDTAnalyzer::Filter
