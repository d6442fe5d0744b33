#include "SnapshotRowModel.h"

namespace zdtgen::snp {
namespace {

// The printable rule of the viewer: 0x20 to 0x7E and every byte from 0x80 up.
std::string Printable(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F)
            kept.push_back(c);
    }
    return kept;
}

} // namespace

void RowModel::Start(std::string_view name, Attrs attrs) {
    const State state = Child(m_stack.back(), name);
    m_stack.push_back(state);
    switch (state) {
    case State::SnapList:
        Read(attrs, "Created", 7);
        m_slots[7] = Printable(m_slots[7]);
        m_dateTime = m_slots[7];
        break;
    case State::SnapShot:
        Read(attrs, "ShortName", 5);
        Read(attrs, "LongName", 6);
        Read(attrs, "Created", 7);
        Row("000", "Start SnapShot", SnapshotText(), "", "", "");
        break;
    case State::LogicalLink:
        Read(attrs, "Name", 9);
        Row("000", "Start LogicalLink", "", Printable(m_slots[9]), "", "");
        break;
    case State::Service:
    case State::ComPrimitive:
    case State::Error:
        Read(attrs, "Name", 8);
        Row(state == State::Error ? "003" : "000",
            state == State::Service ? "Service"
            : state == State::Error ? "Error"
                                    : "ComPrimitive",
            Printable(m_slots[8]), "", "", "");
        m_slots[8].clear();
        break;
    case State::DTC:
        Read(attrs, "Name", 11);
        Row("000", "DTC", Printable(m_slots[11]), "", "", "");
        m_slots[11].clear();
        break;
    case State::ProcessValue:
        Read(attrs, "Name", 8);
        Read(attrs, "Unit", 10);
        break;
    default:
        break;
    }
}

void RowModel::Text(std::string_view text) {
    switch (m_stack.back()) {
    case State::ZDTProject:
        m_slots[0].append(text);
        break;
    case State::VIT:
        m_slots[1].append(text);
        break;
    case State::ProcessValue:
        m_slots[11].append(text);
        break;
    default:
        break;
    }
}

void RowModel::End() {
    const State state = m_stack.back();
    m_stack.pop_back();
    switch (state) {
    case State::SnapShot:
        Row("000", "Stop SnapShot", SnapshotText(), "", "", "");
        m_slots[5].clear();
        m_slots[6].clear();
        m_slots[7].clear();
        break;
    case State::ZDTProject:
        Row("001", "Zdt Project", Printable(m_slots[0]), "", "", "");
        m_slots[0].clear();
        break;
    case State::VIT:
        Row("001", "VIT", Printable(m_slots[1]), "", "", "");
        m_slots[1].clear();
        break;
    case State::LogicalLink:
        Row("000", "Stop LogicalLink", "", Printable(m_slots[9]), "", "");
        m_slots[9].clear();
        break;
    case State::ProcessValue:
        Row("002", "", "ProcessValue", Printable(m_slots[8]), Printable(m_slots[11]), Printable(m_slots[10]));
        m_slots[8].clear();
        m_slots[10].clear();
        m_slots[11].clear();
        break;
    default:
        break;
    }
}

RowModel::State RowModel::Child(State parent, std::string_view name) {
    switch (parent) {
    case State::DocumentRoot:
        return name == "SnapList" ? State::SnapList : State::Unknown;
    case State::SnapList:
        return name == "SnapShot" ? State::SnapShot : State::Unknown;
    case State::SnapShot:
        if (name == "ZDTProject")
            return State::ZDTProject;
        if (name == "VIT")
            return State::VIT;
        if (name == "LogicalLink")
            return State::LogicalLink;
        if (name == "Service")
            return State::Service;
        if (name == "BUS")
            return State::BUS;
        if (name == "ECUAddress")
            return State::ECUAddress;
        return State::Unknown;
    case State::LogicalLink:
        if (name == "Service")
            return State::Service;
        if (name == "ComPrimitive")
            return State::ComPrimitive;
        if (name == "DTC")
            return State::DTC;
        if (name == "Error")
            return State::Error;
        return State::Unknown;
    // Every child of these three is a process value, whatever its name.
    case State::Service:
    case State::ComPrimitive:
    case State::DTC:
        return State::ProcessValue;
    default:
        return State::Unknown;
    }
}

// An absent attribute leaves the slot as it stands.
void RowModel::Read(Attrs attrs, std::string_view name, std::size_t slot) {
    for (const auto& attr : attrs)
        if (attr.name == name) {
            m_slots[slot] = attr.value;
            return;
        }
}

std::string RowModel::SnapshotText() const {
    std::string text = Printable(m_slots[5]);
    const std::string longName = Printable(m_slots[6]);
    const std::string created = Printable(m_slots[7]);
    if (!longName.empty())
        text += " " + longName;
    if (!created.empty())
        text += " [ " + created + " ]";
    return text;
}

void RowModel::WriteHeaderOnce() {
    if (m_headerWritten)
        return;
    m_headerWritten = true;
    m_sink.Put("#DateTime\t");
    m_sink.Put(m_dateTime);
    m_sink.Put('\n');
}

void RowModel::Row(std::string_view flags, std::string_view event, const std::string& description,
                   const std::string& name, const std::string& value, const std::string& unit) {
    WriteHeaderOnce();
    for (const std::string_view column :
         {flags, event, std::string_view(description), std::string_view(name), std::string_view(value)}) {
        m_sink.Put(column);
        m_sink.Put('\t');
    }
    m_sink.Put(unit);
    m_sink.Put('\n');
    ++m_rows;
}

} // namespace zdtgen::snp
