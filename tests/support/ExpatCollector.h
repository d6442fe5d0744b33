#pragma once

#include <expat.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

// Generic names in a namespace of their own, so that no test's own ParseResult clashes.
namespace expatcollect {

// What Expat reports, element by element, with each element's own text joined.
struct XmlElement {
    std::string name;
    int parent = -1; // index into ParseResult::elements; -1 for the root
    std::map<std::string, std::string> attributes;
    std::string text; // own character data, all pieces joined
    int textCallbacks = 0;
    int depth = 0;
    std::vector<int> children;
};

struct ParseResult {
    XML_Error error = XML_ERROR_NONE;
    std::vector<XmlElement> elements; // in document order of their start tags
    // One entry per start ('+') and end ('-') tag: the order of events a reader sees.
    std::vector<std::pair<char, std::size_t>> events;
    int maxDepth = 0;

    const XmlElement* Root() const { return elements.empty() ? nullptr : &elements.front(); }
    std::string ParentName(const XmlElement& e) const {
        return e.parent < 0 ? "" : elements[static_cast<std::size_t>(e.parent)].name;
    }
    // (parent, child) name pairs as the file nests them.
    std::set<std::pair<std::string, std::string>> Pairs() const {
        std::set<std::pair<std::string, std::string>> pairs;
        for (const auto& e : elements)
            pairs.emplace(ParentName(e), e.name);
        return pairs;
    }
    std::vector<const XmlElement*> Named(const std::string& name, const std::string& parent = "") const {
        std::vector<const XmlElement*> found;
        for (const auto& e : elements)
            if (e.name == name && (parent.empty() || ParentName(e) == parent))
                found.push_back(&e);
        return found;
    }
    std::vector<std::string> ChildNames(const XmlElement& e) const {
        std::vector<std::string> names;
        for (const int child : e.children)
            names.push_back(elements[static_cast<std::size_t>(child)].name);
        return names;
    }
};

// Parses in the viewer's 10,240-byte blocks, so texts split where they will split there.
class ExpatCollector {
public:
    ParseResult Parse(const std::string& xml) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &ExpatCollector::OnStart, &ExpatCollector::OnEnd);
        XML_SetCharacterDataHandler(parser, &ExpatCollector::OnText);
        const std::size_t block = 10240;
        for (std::size_t offset = 0;; offset += block) {
            const std::size_t count = std::min(block, xml.size() - std::min(offset, xml.size()));
            const bool final = count < block;
            if (XML_Parse(parser, xml.data() + offset, static_cast<int>(count), final) == XML_STATUS_ERROR) {
                m_result.error = XML_GetErrorCode(parser);
                break;
            }
            if (final)
                break;
        }
        XML_ParserFree(parser);
        return std::move(m_result);
    }

private:
    static void OnStart(void* data, const XML_Char* name, const XML_Char** attributes) {
        auto& self = *static_cast<ExpatCollector*>(data);
        XmlElement element;
        element.name = name;
        element.parent = self.m_open.empty() ? -1 : self.m_open.back();
        for (int i = 0; attributes[i] != nullptr; i += 2)
            element.attributes.emplace(attributes[i], attributes[i + 1]);
        element.depth = static_cast<int>(self.m_open.size()) + 1;
        self.m_result.maxDepth = std::max(self.m_result.maxDepth, element.depth);
        const int index = static_cast<int>(self.m_result.elements.size());
        if (element.parent >= 0)
            self.m_result.elements[static_cast<std::size_t>(element.parent)].children.push_back(index);
        self.m_result.events.emplace_back('+', static_cast<std::size_t>(index));
        self.m_result.elements.push_back(std::move(element));
        self.m_open.push_back(index);
    }
    static void OnEnd(void* data, const XML_Char*) {
        auto& self = *static_cast<ExpatCollector*>(data);
        self.m_result.events.emplace_back('-', static_cast<std::size_t>(self.m_open.back()));
        self.m_open.pop_back();
    }
    static void OnText(void* data, const XML_Char* text, int length) {
        auto& self = *static_cast<ExpatCollector*>(data);
        if (self.m_open.empty())
            return;
        auto& element = self.m_result.elements[static_cast<std::size_t>(self.m_open.back())];
        element.text.append(text, static_cast<std::size_t>(length));
        ++element.textCallbacks;
    }

    ParseResult m_result;
    std::vector<int> m_open;
};

inline ParseResult ParseXml(const std::string& xml) {
    return ExpatCollector().Parse(xml);
}

} // namespace expatcollect
