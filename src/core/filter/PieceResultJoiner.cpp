#include "filter/PieceResultJoiner.h"
#include "common/OwnedFile.h"
#include "xmldoc/OwnedParser.h"

#include <expat.h>

#include <cstring>
#include <memory>
#include <vector>

namespace ZDTAnalyzer::Filter {

namespace {

using File = zdt::OwnedFile;

// "<Trace/>" as "<Trace>", and the other way round.
std::string openForm(const std::string& tag) {
    if (tag.size() >= 2 && tag.compare(tag.size() - 2, 2, "/>") == 0)
        return tag.substr(0, tag.size() - 2) + ">";
    return tag;
}

std::string emptyForm(const std::string& tag) {
    if (tag.size() >= 2 && tag.compare(tag.size() - 2, 2, "/>") == 0)
        return tag;
    return tag.substr(0, tag.size() - 1) + "/>";
}

} // namespace

// One pass of Expat over a piece's result. A second handle on the same file follows it and
// hands on the container's content, without the skip markers.
class PieceScan {
public:
    PieceScan(PieceResultJoiner& joiner, bool first, std::FILE* copySource)
        : m_joiner(joiner), m_first(first), m_source(copySource), m_buffer(1u << 16) {}

    void attach(XML_Parser parser) { m_parser = parser; }
    bool complete() const { return m_closed && !m_failed; }
    long long suffixStart() const { return m_suffixStart; }

    static void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char**) {
        static_cast<PieceScan*>(data)->start(name);
    }
    static void XMLCALL onEnd(void* data, const XML_Char*) { static_cast<PieceScan*>(data)->end(); }
    static void XMLCALL onInstruction(void* data, const XML_Char* target, const XML_Char*) {
        static_cast<PieceScan*>(data)->instruction(target);
    }

private:
    long long eventStart() const { return XML_GetCurrentByteIndex(m_parser); }
    long long eventEnd() const { return eventStart() + XML_GetCurrentByteCount(m_parser); }

    void start(const XML_Char* name) {
        ++m_depth;
        if (m_depth != m_joiner.m_containerDepth || m_inContainer || m_closed ||
            (!m_joiner.m_containerName.empty() && m_joiner.m_containerName != name))
            return;
        m_inContainer = true;
        m_contentFrom = eventEnd();
        if (m_first) {
            const std::string prefix = read(0, eventStart());
            m_joiner.takePrefix(prefix, read(eventStart(), eventEnd()), name);
        }
    }

    void end() {
        if (m_depth == m_joiner.m_containerDepth && m_inContainer) {
            // An empty element <a/> reports no bytes of its own at its end.
            if (XML_GetCurrentByteCount(m_parser) == 0) {
                m_suffixStart = m_contentFrom;
            } else {
                handOn(m_contentFrom, eventStart());
                m_suffixStart = eventEnd();
            }
            m_inContainer = false;
            m_closed = true;
        }
        --m_depth;
    }

    void instruction(const XML_Char* target) {
        if (!m_inContainer || m_depth != m_joiner.m_containerDepth || m_joiner.m_skipMarker.empty() ||
            m_joiner.m_skipMarker != target)
            return;
        handOn(m_contentFrom, eventStart());
        m_joiner.countSkip();
        m_contentFrom = eventEnd();
    }

    std::string read(long long from, long long to) {
        std::string bytes(static_cast<std::size_t>(to - from), '\0');
        if (fseeko(m_source, from, SEEK_SET) != 0 ||
            std::fread(bytes.data(), 1, bytes.size(), m_source) != bytes.size())
            m_failed = true;
        return bytes;
    }

    // Copies the bytes [from, to) of the piece's result to the joined result.
    void handOn(long long from, long long to) {
        if (to <= from || m_failed)
            return;
        if (!m_joiner.beginContent() || fseeko(m_source, from, SEEK_SET) != 0) {
            m_failed = true;
            return;
        }
        for (long long left = to - from; left > 0;) {
            const std::size_t want =
                static_cast<std::size_t>(std::min<long long>(left, static_cast<long long>(m_buffer.size())));
            if (std::fread(m_buffer.data(), 1, want, m_source) != want || !m_joiner.write(m_buffer.data(), want)) {
                m_failed = true;
                return;
            }
            left -= static_cast<long long>(want);
        }
    }

    PieceResultJoiner& m_joiner;
    bool m_first;
    std::FILE* m_source;
    std::vector<char> m_buffer;
    XML_Parser m_parser = nullptr;
    int m_depth = 0;
    bool m_inContainer = false;
    bool m_closed = false;
    bool m_failed = false;
    long long m_contentFrom = 0;
    long long m_suffixStart = 0;
};

PieceResultJoiner::PieceResultJoiner(int containerDepth, std::string containerName, std::string skipMarker,
                                     std::FILE* output)
    : m_containerDepth(containerDepth), m_containerName(std::move(containerName)), m_skipMarker(std::move(skipMarker)),
      m_output(output) {}

void PieceResultJoiner::takePrefix(std::string prefix, std::string startTag, std::string name) {
    m_prefix = std::move(prefix);
    m_startTag = std::move(startTag);
    m_name = std::move(name);
}

bool PieceResultJoiner::write(const char* bytes, std::size_t size) {
    if (size > 0 && std::fwrite(bytes, 1, size, m_output) != size)
        m_failed = true;
    return !m_failed;
}

// The engine joins a run of k empty strings with k - 1 blanks; a run may span pieces.
bool PieceResultJoiner::beginContent() {
    if (!m_opened) {
        const std::string open = openForm(m_startTag);
        write(m_prefix.data(), m_prefix.size());
        write(open.data(), open.size());
        m_opened = true;
    }
    for (; m_pendingSkips > 1; --m_pendingSkips)
        write(" ", 1);
    m_pendingSkips = 0;
    return !m_failed;
}

bool PieceResultJoiner::addPiece(const std::string& resultPath) {
    if (m_failed)
        return false;
    const File in(std::fopen(resultPath.c_str(), "rb"));
    const File source(std::fopen(resultPath.c_str(), "rb"));
    const OwnedParser parser(XML_ParserCreate(nullptr));
    if (!in || !source || !parser)
        return false;
    PieceScan scan(*this, m_pieces == 0, source.get());
    scan.attach(parser.get());
    XML_SetUserData(parser.get(), &scan);
    XML_SetElementHandler(parser.get(), PieceScan::onStart, PieceScan::onEnd);
    XML_SetProcessingInstructionHandler(parser.get(), PieceScan::onInstruction);
    constexpr int BlockBytes = 1 << 20;
    for (;;) {
        void* block = XML_GetBuffer(parser.get(), BlockBytes);
        if (block == nullptr)
            return false;
        const std::size_t got = std::fread(block, 1, BlockBytes, in.get());
        const bool last = got < static_cast<std::size_t>(BlockBytes);
        if (XML_ParseBuffer(parser.get(), static_cast<int>(got), last ? 1 : 0) != XML_STATUS_OK)
            return false;
        if (last)
            break;
    }
    if (std::ferror(in.get()) != 0 || !scan.complete() || m_failed)
        return false;
    // What follows the container is the same in every piece; the last one's is kept.
    if (fseeko(source.get(), scan.suffixStart(), SEEK_SET) != 0)
        return false;
    m_suffix.clear();
    std::vector<char> buffer(1u << 16);
    for (std::size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), source.get())) > 0;)
        m_suffix.append(buffer.data(), got);
    ++m_pieces;
    return std::ferror(source.get()) == 0;
}

bool PieceResultJoiner::finish() {
    if (m_pieces == 0 || m_failed)
        return false;
    if (m_pendingSkips > 1)
        beginContent();
    if (m_opened) {
        const std::string endTag = "</" + m_name + ">";
        write(endTag.data(), endTag.size());
    } else {
        const std::string empty = emptyForm(m_startTag);
        write(m_prefix.data(), m_prefix.size());
        write(empty.data(), empty.size());
    }
    write(m_suffix.data(), m_suffix.size());
    return !m_failed && std::fflush(m_output) == 0;
}

} // namespace ZDTAnalyzer::Filter
