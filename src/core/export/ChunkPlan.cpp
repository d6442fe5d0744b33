#include "export/ChunkPlan.h"
#include "common/OwnedFile.h"
#include "xmldoc/OwnedParser.h"

#include "common/Operation.h"

#include <expat.h>

#include <cstdio>
#include <cstring>
#include <memory>

namespace ZDTAnalyzer {
namespace {

using File = zdt::OwnedFile;

// Follows the element depth and records where the container's children end.
class ChunkScanner {
public:
    ChunkScanner(ConversionKind kind, std::uint64_t targetBytes) : m_kind(kind), m_targetBytes(targetBytes) {}

    static void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** /*attributes*/) {
        static_cast<ChunkScanner*>(data)->start(name);
    }
    static void XMLCALL onEnd(void* data, const XML_Char* /*name*/) { static_cast<ChunkScanner*>(data)->end(); }

    void attach(XML_Parser parser) { m_parser = parser; }
    bool usable() const { return m_containerClosed && !m_ambiguous && m_plan.chunkCount() >= 2; }
    ChunkPlan take() { return std::move(m_plan); }

private:
    zdt::FileOffset eventStart() const { return static_cast<zdt::FileOffset>(XML_GetCurrentByteIndex(m_parser)); }
    zdt::FileOffset eventEnd() const {
        return eventStart() + static_cast<zdt::FileOffset>(XML_GetCurrentByteCount(m_parser));
    }

    bool isContainer(const XML_Char* name) const {
        if (m_kind == ConversionKind::Snapshot)
            return m_depth == 1;
        return m_depth == 2 && std::strcmp(name, "Trace") == 0;
    }

    void start(const XML_Char* name) {
        ++m_depth;
        if (m_containerDepth == 0 && isContainer(name)) {
            if (m_containerClosed) {
                m_ambiguous = true; // a second container: its rows would be missed
                return;
            }
            m_containerDepth = m_depth;
            m_plan.headerEnd = eventEnd();
            m_plan.cuts.push_back(m_plan.headerEnd);
            m_childStartEnd = m_plan.headerEnd;
        } else if (m_containerDepth != 0 && m_depth == m_containerDepth + 1) {
            m_childStartEnd = eventEnd();
        }
    }

    void end() {
        if (m_containerDepth != 0 && m_depth == m_containerDepth + 1) {
            // An empty element <a/> reports no bytes of its own at its end.
            const zdt::FileOffset childEnd = XML_GetCurrentByteCount(m_parser) == 0 ? m_childStartEnd : eventEnd();
            m_lastChildEnd = childEnd;
            if (childEnd - m_plan.cuts.back() >= m_targetBytes)
                m_plan.cuts.push_back(childEnd);
        } else if (m_containerDepth != 0 && m_depth == m_containerDepth) {
            const zdt::FileOffset tail = eventStart();
            // A last piece of nothing but blanks joins the one before.
            if (m_plan.cuts.size() > 1 && m_plan.cuts.back() == m_lastChildEnd)
                m_plan.cuts.back() = tail;
            else
                m_plan.cuts.push_back(tail);
            // An empty container <Trace/> has its end where its start was.
            if (XML_GetCurrentByteCount(m_parser) == 0) {
                m_plan.cuts.clear();
                m_plan.cuts.push_back(m_plan.headerEnd);
            }
            m_containerDepth = 0;
            m_containerClosed = true;
        }
        --m_depth;
    }

    ConversionKind m_kind;
    std::uint64_t m_targetBytes;
    XML_Parser m_parser = nullptr;
    int m_depth = 0;
    int m_containerDepth = 0;
    bool m_containerClosed = false;
    bool m_ambiguous = false;
    zdt::FileOffset m_childStartEnd = 0;
    zdt::FileOffset m_lastChildEnd = 0;
    ChunkPlan m_plan;
};

bool copyRange(std::FILE* in, std::FILE* out, zdt::FileOffset from, zdt::FileOffset to, std::vector<char>& buffer) {
    if (fseeko(in, static_cast<off_t>(from), SEEK_SET) != 0)
        return false;
    for (zdt::FileOffset left = to - from; left > 0;) {
        const std::size_t want = static_cast<std::size_t>(std::min<zdt::FileOffset>(left, buffer.size()));
        const std::size_t got = std::fread(buffer.data(), 1, want, in);
        if (got != want || std::fwrite(buffer.data(), 1, got, out) != got)
            return false;
        left -= got;
    }
    return true;
}

} // namespace

std::optional<ChunkPlan> PlanChunks(const std::string& path, ConversionKind kind, std::uint64_t targetBytes,
                                    const zdt::OperationControl* control) {
    const File in(std::fopen(path.c_str(), "rb"));
    if (!in)
        return std::nullopt;
    const OwnedParser parser(XML_ParserCreate(nullptr));
    if (!parser)
        return std::nullopt;
    ChunkScanner scanner(kind, targetBytes);
    scanner.attach(parser.get());
    XML_SetUserData(parser.get(), &scanner);
    XML_SetElementHandler(parser.get(), ChunkScanner::onStart, ChunkScanner::onEnd);

    constexpr int BlockBytes = 1 << 20;
    zdt::FileOffset size = 0;
    for (;;) {
        void* block = XML_GetBuffer(parser.get(), BlockBytes);
        if (block == nullptr)
            return std::nullopt;
        const std::size_t got = std::fread(block, 1, BlockBytes, in.get());
        const bool last = got < static_cast<std::size_t>(BlockBytes);
        if (XML_ParseBuffer(parser.get(), static_cast<int>(got), last ? 1 : 0) != XML_STATUS_OK)
            return std::nullopt;
        size += got;
        if (control != nullptr && control->isCancelRequested())
            return std::nullopt;
        if (last)
            break;
    }
    if (std::ferror(in.get()) != 0 || !scanner.usable())
        return std::nullopt;
    ChunkPlan plan = scanner.take();
    plan.fileSize = size;
    return plan;
}

bool WriteChunk(const ChunkPlan& plan, std::size_t index, const std::string& source, const std::string& target) {
    const File in(std::fopen(source.c_str(), "rb"));
    if (!in || index >= plan.chunkCount())
        return false;
    File out(std::fopen(target.c_str(), "wb"));
    if (!out)
        return false;
    std::vector<char> buffer(1u << 20);
    const bool copied = copyRange(in.get(), out.get(), 0, plan.headerEnd, buffer) &&
                        copyRange(in.get(), out.get(), plan.cuts[index], plan.cuts[index + 1], buffer) &&
                        copyRange(in.get(), out.get(), plan.tailStart(), plan.fileSize, buffer);
    return std::fclose(out.release()) == 0 && copied;
}

} // namespace ZDTAnalyzer
