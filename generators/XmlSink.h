#pragma once

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>

namespace zdtgen {

// Buffers a stream in large writes and counts what went into it; it writes XML text with
// the escapes a parser needs to give the values back unchanged.
class XmlSink {
public:
    static constexpr std::size_t FlushBytes = 1u << 20;

    // A null stream only counts.
    explicit XmlSink(std::ostream* out) : m_out(out) { m_buffer.reserve(FlushBytes + 4096); }
    void Put(std::string_view text) {
        m_buffer.append(text);
        m_bytes += text.size();
        if (m_buffer.size() >= FlushBytes)
            Flush();
    }
    void Put(char c) {
        m_buffer.push_back(c);
        ++m_bytes;
        if (m_buffer.size() >= FlushBytes)
            Flush();
    }
    void Flush() {
        if (m_out != nullptr)
            m_out->write(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
        m_buffer.clear();
    }
    std::uint64_t Bytes() const { return m_bytes; }

    void PutText(std::string_view text) { PutEscaped(text, &TextReference); }
    void PutAttributeValue(std::string_view value) { PutEscaped(value, &AttributeReference); }

    // Character data: only what XML needs; a carriage return goes as a reference, as a
    // parser turns a literal one into a line feed. Empty for a byte that goes as itself.
    static std::string_view TextReference(char c) {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '\r':
            return "&#13;";
        default:
            return {};
        }
    }
    // An attribute value in double quotes: white space other than the blank goes as
    // references, as a parser normalises literal tabs and line breaks to blanks.
    static std::string_view AttributeReference(char c) {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '"':
            return "&quot;";
        case '\t':
            return "&#9;";
        case '\n':
            return "&#10;";
        case '\r':
            return "&#13;";
        default:
            return {};
        }
    }

private:
    void PutEscaped(std::string_view text, std::string_view (*reference)(char)) {
        for (const char c : text) {
            const std::string_view escaped = reference(c);
            if (escaped.empty())
                Put(c);
            else
                Put(escaped);
        }
    }

    std::ostream* m_out;
    std::string m_buffer;
    std::uint64_t m_bytes = 0;
};

struct Attr {
    std::string_view name;
    std::string_view value;
};
using Attrs = std::initializer_list<Attr>;

// Character data as markup in a string, for writers that cut or decorate it before it goes out.
inline std::string EscapedText(std::string_view text) {
    std::string markup;
    markup.reserve(text.size() + 8);
    for (const char c : text) {
        const std::string_view escaped = XmlSink::TextReference(c);
        if (escaped.empty())
            markup += c;
        else
            markup += escaped;
    }
    return markup;
}

} // namespace zdtgen
