#pragma once

#include "XmlSink.h"

#include <string>
#include <string_view>
#include <vector>

namespace zdtgen::xpvt {

// Writes elements with optional indentation. Leaves take markup that is already escaped,
// so callers can split a text by entities, CDATA and comments.
class XmlOut {
public:
    XmlOut(XmlSink& sink, bool indent) : m_sink(sink), m_indent(indent) {}

    void Open(std::string_view name, Attrs attrs = {}) {
        StartTag(name, attrs, false);
        m_open.push_back(std::string(name));
        m_hadChild.push_back(false);
    }
    void Close() {
        const bool hadChild = m_hadChild.back();
        m_hadChild.pop_back();
        if (hadChild)
            NewLine(m_open.size() - 1);
        m_sink.Put("</");
        m_sink.Put(m_open.back());
        m_sink.Put(">");
        m_open.pop_back();
    }
    void Leaf(std::string_view name, std::string_view markup, Attrs attrs = {}) {
        StartTag(name, attrs, false);
        m_sink.Put(markup);
        m_sink.Put("</");
        m_sink.Put(name);
        m_sink.Put(">");
    }
    void Empty(std::string_view name, Attrs attrs = {}) { StartTag(name, attrs, true); }
    void Raw(std::string_view text) { m_sink.Put(text); }
    std::size_t Depth() const { return m_open.size(); }

private:
    void StartTag(std::string_view name, Attrs attrs, bool empty) {
        if (!m_hadChild.empty())
            m_hadChild.back() = true;
        NewLine(m_open.size());
        m_sink.Put("<");
        m_sink.Put(name);
        for (const Attr& a : attrs) {
            m_sink.Put(" ");
            m_sink.Put(a.name);
            m_sink.Put("=\"");
            m_sink.PutAttributeValue(a.value);
            m_sink.Put("\"");
        }
        m_sink.Put(empty ? "/>" : ">");
    }
    void NewLine(std::size_t depth) {
        if (!m_indent || (depth == 0 && m_sink.Bytes() == 0))
            return;
        m_line.assign(1, '\n');
        m_line.append(2 * depth, ' ');
        m_sink.Put(m_line);
    }

    XmlSink& m_sink;
    bool m_indent;
    std::vector<std::string> m_open;
    std::vector<bool> m_hadChild;
    std::string m_line;
};

} // namespace zdtgen::xpvt
