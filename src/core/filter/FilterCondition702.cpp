#include "filter/FilterCondition702.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

namespace ZDTAnalyzer::Filter::XPVT_7_02 {

namespace {

// Visits the record's parts in file order; the same walk writes and reads.
template <typename Record, typename Visitor> void visitFields(Record& r, Visitor&& visit) {
    const auto condition = [&visit](auto& c) {
        visit(c.negate);
        visit(c.enabled);
        visit(c.text);
    };
    visit(r.includeOpenCloseLogicalLinks);
    condition(r.logicalLink);
    condition(r.accessKeyOfLocation);
    visit(r.includeStartFinishPrimitives);
    condition(r.primitiveLogicalLink);
    condition(r.primitiveAccessKeyOfLocation);
    condition(r.parentDiagComPrimitive);
    visit(r.includeResults);
    condition(r.primitiveShortName);
    condition(r.primitiveId);
    condition(r.requestShortName);
    condition(r.requestMessage);
    visit(r.requestParameterFilter);
    condition(r.requestParameterShortName);
    condition(r.requestParameterValue);
    condition(r.responseShortName);
    condition(r.responseMessage);
    visit(r.responseParameterFilter);
    condition(r.responseParameterShortName);
    condition(r.responseParameterValue);
}

class RecordReader {
public:
    explicit RecordReader(std::string bytes) : m_bytes(std::move(bytes)) {}

    bool ok() const { return m_ok; }

    void operator()(bool& flag) {
        if (!m_ok || m_at >= m_bytes.size()) {
            m_ok = false;
            return;
        }
        flag = m_bytes[m_at] == 't';
        const std::size_t end = m_bytes.find('\n', m_at);
        // The last line may miss its line feed.
        m_at = end == std::string::npos ? m_bytes.size() : end + 1;
    }

    void operator()(std::string& text) {
        const std::optional<std::size_t> length = m_ok ? readLength() : std::nullopt;
        if (!length || m_bytes.size() - m_at < *length) {
            m_ok = false;
            return;
        }
        text.assign(m_bytes, m_at, *length);
        m_at += *length;
        if (m_at < m_bytes.size() && m_bytes[m_at] == '\n')
            ++m_at;
    }

private:
    // Decimal digits and one blank; anything else is not this format.
    std::optional<std::size_t> readLength() {
        std::size_t length = 0;
        std::size_t digits = 0;
        for (; m_at < m_bytes.size() && m_bytes[m_at] >= '0' && m_bytes[m_at] <= '9'; ++m_at, ++digits) {
            if (digits >= 12)
                return std::nullopt;
            length = length * 10 + static_cast<std::size_t>(m_bytes[m_at] - '0');
        }
        if (digits == 0 || m_at >= m_bytes.size() || m_bytes[m_at] != ' ')
            return std::nullopt;
        ++m_at;
        return length;
    }

    std::string m_bytes;
    std::size_t m_at = 0;
    bool m_ok = true;
};

} // namespace

bool saveFilter702(const std::string& path, const FilterCondition702& record) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    struct Writer {
        std::ofstream& out;
        void operator()(const bool& flag) { out << (flag ? "true\n" : "false\n"); }
        void operator()(const std::string& text) { out << text.size() << ' ' << text << '\n'; }
    } writer{out};
    visitFields(record, writer);
    out.close();
    return !out.fail();
}

bool loadFilter702(const std::string& path, FilterCondition702& record) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (in.bad())
        return false;
    RecordReader reader(bytes.str());
    FilterCondition702 read;
    visitFields(read, reader);
    if (!reader.ok())
        return false;
    record = std::move(read);
    return true;
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
