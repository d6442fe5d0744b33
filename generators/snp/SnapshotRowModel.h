#pragma once

#include "XmlSink.h"

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zdtgen::snp {

// Follows the parse of the viewer event by event (element states, slots, rows), so the
// expected rows come from the same events that the XML text encodes, whatever the nesting.
class RowModel {
public:
    explicit RowModel(std::ostream& out) : m_sink(&out) { m_stack.push_back(State::DocumentRoot); }

    // The parser's events, in document order.
    void Start(std::string_view name, Attrs attrs);
    void Text(std::string_view text);
    void End();

    // Writes the header line even when no row was listed.
    void Finish() {
        WriteHeaderOnce();
        m_sink.Flush();
    }
    std::uint64_t Rows() const { return m_rows; }

private:
    enum class State {
        SnapList,
        SnapShot,
        ZDTProject,
        VIT,
        LogicalLink,
        Service,
        BUS,
        ECUAddress,
        ComPrimitive,
        DTC,
        Error,
        ProcessValue,
        Unknown,
        DocumentRoot
    };

    static State Child(State parent, std::string_view name);
    void Read(Attrs attrs, std::string_view name, std::size_t slot);
    std::string SnapshotText() const;

    void WriteHeaderOnce();
    void Row(std::string_view flags, std::string_view event, const std::string& description, const std::string& name,
             const std::string& value, const std::string& unit);

    XmlSink m_sink;
    std::vector<State> m_stack;
    std::array<std::string, 12> m_slots;
    std::string m_dateTime;
    bool m_headerWritten = false;
    std::uint64_t m_rows = 0;
};

} // namespace zdtgen::snp
