#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

// Generator of snapshot files (.snp) for the tests, the benchmarks and samples/.
// Deterministic by seed: the same options give the same bytes on every platform.
namespace zdtgen {

// Content a well-behaved writer never produces, or that a reader handles only when it
// follows the nesting tables exactly. The first seven kinds mix into the snapshots; the
// last two change the file as a whole.
struct SnapshotHostile {
    // Unknown elements at several depths, some holding known names (a "SnapShot" inside
    // the list's unknown child, a "Service" inside a link's unknown child ...), known
    // names at places where they are not allowed, comments and processing instructions.
    bool unknownElements = false;
    // Children of "Service", "ComPrimitive" and "DTC" with other names, which the
    // catch-all row of those tables reads as process values.
    bool catchAllChildren = false;
    // Texts split by entities, character references, CDATA sections, comments, line
    // breaks and unknown child elements.
    bool splitText = false;
    // Tab, line feed and carriage return (as references) and DEL in names and texts,
    // and a name of control characters only. Only characters XML allows.
    bool controlChars = false;
    // UTF-8 names, units, texts and element names, up to four-byte characters and C1.
    bool nonAscii = false;
    // One attribute value of hugeAttributeBytes in the first snapshot and every 64th.
    bool hugeAttributes = false;
    // Unknown elements nested nestingDepth levels deep, under a link and under a value.
    bool deepNesting = false;
    // The file stops in the middle of an attribute value: not well-formed.
    bool truncatedEnd = false;
    // Well-formed, but the root is another element that holds a whole snapshot list.
    bool foreignRoot = false;

    std::uint32_t hugeAttributeBytes = 1u << 20;
    std::uint32_t nestingDepth = 300;

    bool Any() const;
    // The seven kinds that keep the file a well-formed snapshot list.
    static SnapshotHostile InFileKinds();
};

struct SnapshotOptions {
    std::uint64_t seed = 1;
    // Snapshots to write; when targetBytes is not 0 it wins: snapshots are written until
    // the file holds at least that many bytes.
    std::uint64_t snapshots = 4;
    std::uint64_t targetBytes = 0;
    // "Created" of "SnapList" ("time,date", as the session information splits it);
    // nullopt omits the attribute.
    std::optional<std::string> listCreated = std::string("14:05:09,21.11.2023");
    // Line breaks and indentation between elements; they are text, so they also reach
    // the values that take text, exactly as a parser delivers them.
    bool indent = true;
    SnapshotHostile hostile;
};

// What a write produced. Rows are those the viewer lists; rowsKnown is false when the
// file is not well-formed, as then the viewer opens no document at all.
struct SnapshotSummary {
    std::uint64_t snapshots = 0;
    std::uint64_t bytes = 0;
    std::uint64_t rows = 0;
    bool rowsKnown = true;
};

std::string MakeSnapshot(const SnapshotOptions& options);
// Streams the file; memory stays small whatever the size.
void WriteSnapshot(std::ostream& out, const SnapshotOptions& options);
// Also writes the rows a reader must list, when `rows` is not null and the file is
// well-formed (otherwise nothing goes to `rows`). Format, one line each, LF-terminated:
//   "#DateTime" TAB the description value that "SnapList" "Created" sets
//   then per row: rowFlags TAB Event TAB Description TAB Name TAB Value TAB Unit
// Columns are the sanitised slot texts, which never hold a tab or a line feed.
SnapshotSummary WriteSnapshotWithRows(std::ostream& out, std::ostream* rows, const SnapshotOptions& options);

// The engine behind the functions above: one object writes one file.
class SnapshotGenerator {
public:
    explicit SnapshotGenerator(const SnapshotOptions& options);
    ~SnapshotGenerator();
    SnapshotGenerator(const SnapshotGenerator&) = delete;
    SnapshotGenerator& operator=(const SnapshotGenerator&) = delete;

    SnapshotSummary Write(std::ostream& out, std::ostream* rows);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zdtgen
