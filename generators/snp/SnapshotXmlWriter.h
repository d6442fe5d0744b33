#pragma once

#include "SnapshotRowModel.h"
#include "XmlSink.h"

#include <string>
#include <string_view>
#include <vector>

namespace zdtgen::snp {

// Writes XML from decoded values and hands the same events to the row model, if any.
class XmlWriter {
public:
    XmlWriter(XmlSink& sink, RowModel* model, bool indent) : m_sink(sink), m_model(model), m_indent(indent) {}

    void Open(std::string_view name, Attrs attrs = {}) {
        CloseStartTag();
        m_sink.Put('<');
        m_sink.Put(name);
        for (const auto& attr : attrs) {
            m_sink.Put(' ');
            m_sink.Put(attr.name);
            m_sink.Put("=\"");
            m_sink.PutAttributeValue(attr.value);
            m_sink.Put('"');
        }
        m_open.emplace_back(name);
        m_startTagOpen = true;
        if (m_model != nullptr)
            m_model->Start(name, attrs);
    }
    // An element without content closes as an empty-element tag.
    void Close() {
        if (m_startTagOpen) {
            m_sink.Put("/>");
            m_startTagOpen = false;
        } else {
            m_sink.Put("</");
            m_sink.Put(m_open.back());
            m_sink.Put('>');
        }
        m_open.pop_back();
        if (m_model != nullptr)
            m_model->End();
    }
    void Element(std::string_view name, Attrs attrs, std::string_view text) {
        Open(name, attrs);
        Text(text);
        Close();
    }

    void Text(std::string_view text) {
        if (text.empty())
            return;
        CloseStartTag();
        m_sink.PutText(text);
        Model(text);
    }
    // The caller keeps "]]>" and carriage returns out.
    void CData(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<![CDATA[");
        m_sink.Put(text);
        m_sink.Put("]]>");
        Model(text);
    }
    // Every ASCII byte as a character reference, alternating decimal and hexadecimal,
    // and the named entities where they exist.
    void References(std::string_view text) {
        CloseStartTag();
        bool hex = false;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte >= 0x80) {
                m_sink.Put(c);
                continue;
            }
            if (c == '\'') {
                m_sink.Put("&apos;");
            } else if (c == '"') {
                m_sink.Put("&quot;");
            } else {
                m_sink.Put(hex ? "&#x" : "&#");
                m_sink.Put(hex ? HexNumber(byte) : std::to_string(byte));
                m_sink.Put(';');
            }
            hex = !hex;
        }
        Model(text);
    }
    void Comment(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<!--");
        m_sink.Put(text);
        m_sink.Put("-->");
    }
    void Instruction(std::string_view text) {
        CloseStartTag();
        m_sink.Put("<?zdt ");
        m_sink.Put(text);
        m_sink.Put("?>");
    }
    // A line break and indentation: text like any other, so the model sees it too.
    void Newline() { Indent(m_open.size()); }
    // The end tag on a line of its own, at the depth of its start tag.
    void CloseOnNewLine() {
        Indent(m_open.size() - 1);
        Close();
    }
    // Bytes outside any element or cut off mid-token; no parser event follows from them.
    void Raw(std::string_view text) {
        CloseStartTag();
        m_sink.Put(text);
    }
    std::size_t Depth() const { return m_open.size(); }

private:
    static std::string HexNumber(unsigned value) {
        static const char* digits = "0123456789ABCDEF";
        std::string text;
        do {
            text.insert(text.begin(), digits[value % 16]);
            value /= 16;
        } while (value != 0);
        return text;
    }
    void Indent(std::size_t depth) {
        if (!m_indent)
            return;
        std::string text = "\n";
        text.append(2 * depth, ' ');
        Text(text);
    }
    void CloseStartTag() {
        if (m_startTagOpen) {
            m_sink.Put('>');
            m_startTagOpen = false;
        }
    }
    void Model(std::string_view text) {
        if (m_model != nullptr)
            m_model->Text(text);
    }

    XmlSink& m_sink;
    RowModel* m_model;
    bool m_indent;
    std::vector<std::string> m_open;
    bool m_startTagOpen = false;
};

} // namespace zdtgen::snp
