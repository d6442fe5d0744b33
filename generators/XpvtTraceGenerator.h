#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

// Generator of process value traces (.xpvt) in the schemas 7.01 and 7.02, for the tests,
// the benchmarks, the fuzz seeds and samples/. Deterministic by seed: the same options give
// the same bytes on every platform. The file is streamed, so any size costs little memory.
namespace zdtgen {

enum class XpvtSchema { V701, V702 };

// Content a well-behaved writer never produces. The first six kinds mix into the trace and
// keep it well-formed; the last two change the file as a whole.
struct XpvtHostile {
    // Unknown elements (with known children inside them) at several depths, and known
    // names where their parent does not allow them: a PDU right under a result, a request
    // under the trace, children inside StopTrace, a second Schema hidden in an unknown
    // element of the header.
    bool unknownElements = false;
    // Texts split by entities (&amp; &lt;), character references, CDATA sections and
    // comments, so one value arrives in several pieces.
    bool splitText = false;
    // Tab, line feed and carriage return (as references where a parser would change them)
    // and DEL in names and values. Only characters XML allows.
    bool controlChars = false;
    // UTF-8 names and values up to four-byte characters and C1, and an unknown element
    // with a UTF-8 name.
    bool nonAscii = false;
    // Repeated leaf elements, which a reader joins without a separator.
    bool repeatedLeaves = false;
    // Unknown elements nested nestingDepth levels deep, once near the start of the trace.
    bool deepNesting = false;
    // The file stops in the middle of an element: not well-formed.
    bool truncatedEnd = false;
    // Well-formed, but the root is another element that holds a whole trace.
    bool foreignRoot = false;

    std::uint32_t nestingDepth = 210;

    bool Any() const;
    // The kinds that keep the file a well-formed trace.
    static XpvtHostile InFileKinds();
};

struct XpvtTraceOptions {
    XpvtSchema schema = XpvtSchema::V702;
    // Text of the header's Schema element; nullopt writes the schema's own ("7.01" or
    // "7,02"). Any other text ("7.02", "7,02 ", "7,02\n") is written as given.
    std::optional<std::string> schemaText;
    // No Schema element at all in the header.
    bool omitSchema = false;
    std::uint64_t seed = 1;
    // Results (request and response pairs, each inside its own link and primitive) to
    // write; when targetBytes is not 0 it wins: results are written until the file holds
    // at least that many bytes.
    std::uint64_t results = 8;
    std::uint64_t targetBytes = 0;
    // Attribute DateTime of the header ("date T time"); nullopt omits it.
    std::optional<std::string> descriptionDateTime = std::string("2023-11-21T14:05:09");
    // Date and Time children of the header as well.
    bool descriptionDateChildren = true;
    // Deepest level of nested parameters (1: no parameter holds another).
    std::uint32_t parameterDepth = 3;
    // Line breaks and indentation between elements (never inside a leaf's text).
    bool indent = true;
    XpvtHostile hostile;
};

struct XpvtTraceSummary {
    std::uint64_t results = 0;
    std::uint64_t bytes = 0;
};

// The Schema text that `options` writes (empty when omitted).
std::string XpvtSchemaText(const XpvtTraceOptions& options);

std::string MakeXpvtTrace(const XpvtTraceOptions& options);
XpvtTraceSummary WriteXpvtTrace(std::ostream& out, const XpvtTraceOptions& options);

// The engine behind the functions above: one object writes one file.
class XpvtTraceGenerator {
public:
    explicit XpvtTraceGenerator(const XpvtTraceOptions& options);
    ~XpvtTraceGenerator();
    XpvtTraceGenerator(const XpvtTraceGenerator&) = delete;
    XpvtTraceGenerator& operator=(const XpvtTraceGenerator&) = delete;

    XpvtTraceSummary Write(std::ostream& out);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zdtgen
