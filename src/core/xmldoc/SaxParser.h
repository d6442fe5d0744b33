#pragma once

#include "common/RowTypes.h"
#include "xmldoc/ConsumerContext.h"

#include <expat.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZDTAnalyzer {

// One row of a transition table. The row with the empty name closes the table, and
// its element is the state of every child whose name is not listed.
template <typename Elements> struct ElementTransition {
    std::string_view name;
    Elements element;
};

// The record a format's routines receive: ConsumerContext, unless the traits name
// their own (a format that adds fields to it).
template <typename Traits> struct ContextOf { using type = ConsumerContext<typename Traits::Consumer>; };
template <typename Traits>
requires requires {
    typename Traits::Context;
}
struct ContextOf<Traits> {
    using type = typename Traits::Context;
};

// Table-driven Expat driver shared by every XML format. The traits class supplies:
//   enum XMLElements : int { ..., UnknownElement, ..., DocumentRoot }  (DocumentRoot highest)
//   using Consumer = ...;
//   static void install(SaxParser<Traits>& parser);  // sets tables and routines
//     or install(SaxParser<Traits>&, Context&) when the tables depend on the consumer
//   using Context = ...;  // optional, see ContextOf
// Each instantiation has its own Exception type, so a pass catches only its own.
template <typename Traits> class SaxParser {
public:
    using XMLElements = typename Traits::XMLElements;
    using Consumer = typename Traits::Consumer;
    using Context = typename ContextOf<Traits>::type;
    using Transition = ElementTransition<XMLElements>;
    using StartRoutine = void (*)(Context& context, const char** attributes);
    using CharacterRoutine = void (*)(Context& context, const std::string& text);
    using EndRoutine = void (*)(Context& context);
    // Called after each block with the bytes read so far; returning false cancels.
    using ProgressCallback = std::function<bool(zdt::FileOffset bytesRead)>;

    static constexpr std::size_t ElementCount = static_cast<std::size_t>(Traits::XMLElements::DocumentRoot) + 1;
    static constexpr std::size_t BlockSize = 10240;
    static constexpr std::size_t InitialStackSize = 200;

    class Exception : public std::exception {
    public:
        explicit Exception(std::string message) : m_message(std::move(message)) {}
        const char* what() const noexcept override { return m_message.c_str(); }
        const std::string& message() const { return m_message; }

    private:
        std::string m_message;
    };

    // A parse stopped by its progress callback; the caller shows no box for it.
    class Cancelled : public Exception {
    public:
        Cancelled() : Exception("Cancelled") {}
    };

    SaxParser() = default;
    ~SaxParser() { release(); }
    SaxParser(const SaxParser&) = delete;
    SaxParser& operator=(const SaxParser&) = delete;

    // Opens the file, lets the traits install their tables and reads to the end.
    // The file stays open until release(), as a document keeps its input for its life.
    void parse(const char* fileName, Context& context, ProgressCallback progress = {}) {
        open(fileName, context);
        if constexpr (requires { Traits::install(*this, context); })
            Traits::install(*this, context);
        else
            Traits::install(*this);
        fillMissingTransitions();
        readLoop(progress);
    }

    void release() {
        if (m_parser != nullptr) {
            XML_ParserFree(m_parser);
            m_parser = nullptr;
        }
        if (m_file != nullptr) {
            std::fclose(m_file);
            m_file = nullptr;
        }
        m_fileName = nullptr;
        m_stack.clear();
        m_stack.shrink_to_fit();
        m_top = -1;
    }

    // The path as given to parse(), not copied: the caller keeps it alive.
    const char* fileName() const { return m_fileName; }

    // The table that sends every child to UnknownElement; the start of every install.
    static const Transition* defaultTransitions() {
        static const Transition table[] = {{"", Traits::XMLElements::UnknownElement}};
        return table;
    }

    void setAllTransitions(const Transition* table) {
        for (auto& entry : m_transitions)
            entry = table;
    }
    void setTransitions(XMLElements parent, const Transition* table) { m_transitions[checkedIndex(parent)] = table; }

    void setStartRoutine(XMLElements element, StartRoutine routine) {
        m_startRoutines[checkedIndex(element)] = routine;
    }
    void setCharacterRoutine(XMLElements element, CharacterRoutine routine) {
        m_characterRoutines[checkedIndex(element)] = routine;
    }
    void setEndRoutine(XMLElements element, EndRoutine routine) { m_endRoutines[checkedIndex(element)] = routine; }

    void setAllStartRoutines(StartRoutine routine) {
        for (auto& entry : m_startRoutines)
            entry = routine;
    }
    void setAllCharacterRoutines(CharacterRoutine routine) {
        for (auto& entry : m_characterRoutines)
            entry = routine;
    }
    void setAllEndRoutines(EndRoutine routine) {
        for (auto& entry : m_endRoutines)
            entry = routine;
    }

private:
    struct ParserUserData {
        SaxParser* parser;
        Context* context;
    };

    void open(const char* fileName, Context& context) {
        release();
        m_transitions.fill(nullptr);
        m_startRoutines.fill(nullptr);
        m_characterRoutines.fill(nullptr);
        m_endRoutines.fill(nullptr);
        m_pending = nullptr;

        m_file = std::fopen(fileName, "r");
        if (m_file == nullptr)
            throw Exception("Could not open input xml file.");
        m_fileName = fileName;
        m_parser = XML_ParserCreate(nullptr);
        if (m_parser == nullptr)
            throw Exception("Could not create xml parser.");
        // No external entity handler: Expat then never fetches external entities.
        XML_SetStartElementHandler(m_parser, &SaxParser::onStart);
        XML_SetCharacterDataHandler(m_parser, &SaxParser::onCharacters);
        XML_SetEndElementHandler(m_parser, &SaxParser::onEnd);
        m_userData = ParserUserData{this, &context};
        XML_SetUserData(m_parser, &m_userData);

        m_stack.assign(InitialStackSize, Traits::XMLElements::DocumentRoot);
        m_top = 0;
    }

    // A state without a table of its own must still lead somewhere harmless.
    void fillMissingTransitions() {
        for (auto& entry : m_transitions)
            if (entry == nullptr)
                entry = defaultTransitions();
    }

    void readLoop(const ProgressCallback& progress) {
        std::vector<char> buffer(BlockSize);
        zdt::FileOffset bytesRead = 0;
        for (;;) {
            const std::size_t count = std::fread(buffer.data(), 1, BlockSize, m_file);
            if (count == 0)
                break;
            // A file that ends exactly on a block boundary never sends the final flag;
            // a document cut off there therefore raises no error. That is wanted.
            const int isFinal = count < BlockSize ? 1 : 0;
            const XML_Status status = XML_Parse(m_parser, buffer.data(), static_cast<int>(count), isFinal);
            rethrowPending();
            if (status == XML_STATUS_ERROR)
                throw Exception(xmlErrorText());
            bytesRead += count;
            if (progress && !progress(bytesRead))
                throw Cancelled();
        }
    }

    std::string xmlErrorText() const {
        const XML_Error code = XML_GetErrorCode(m_parser);
        const char* text = XML_ErrorString(code);
        return "XML error: " + std::to_string(XML_GetCurrentLineNumber(m_parser)) + " " + (text != nullptr ? text : "");
    }

    // Exceptions must not unwind through Expat's C frames: a callback keeps the first
    // one, stops the parser, and the read loop raises it once XML_Parse has returned.
    void rethrowPending() {
        if (m_pending) {
            std::exception_ptr pending = std::move(m_pending);
            m_pending = nullptr;
            std::rethrow_exception(pending);
        }
    }

    template <typename Handler> static void guarded(void* userData, Handler handler) {
        auto* data = static_cast<ParserUserData*>(userData);
        SaxParser& self = *data->parser;
        if (self.m_pending)
            return; // callbacks that Expat still delivers after the stop
        try {
            handler(self, *data->context);
        } catch (...) {
            self.m_pending = std::current_exception();
            XML_StopParser(self.m_parser, XML_FALSE);
        }
    }

    static void XMLCALL onStart(void* userData, const XML_Char* name, const XML_Char** attributes) {
        guarded(userData, [&](SaxParser& self, Context& context) { self.startElement(context, name, attributes); });
    }
    static void XMLCALL onCharacters(void* userData, const XML_Char* text, int length) {
        guarded(userData, [&](SaxParser& self, Context& context) { self.characters(context, text, length); });
    }
    static void XMLCALL onEnd(void* userData, const XML_Char* /*name*/) {
        guarded(userData, [&](SaxParser& self, Context& context) { self.endElement(context); });
    }

    void startElement(Context& context, const char* name, const char** attributes) {
        const std::size_t parent = checkedIndex(topState());
        const std::string_view childName(name);
        const Transition* row = m_transitions[parent];
        while (!row->name.empty() && row->name != childName)
            ++row;
        const std::size_t next = checkedIndex(row->element);
        if (StartRoutine routine = m_startRoutines[next])
            routine(context, attributes);
        push(row->element);
    }

    void characters(Context& context, const char* text, int length) {
        const std::size_t state = checkedIndex(topState());
        if (CharacterRoutine routine = m_characterRoutines[state]) {
            m_text.assign(text, static_cast<std::size_t>(length));
            routine(context, m_text);
        }
    }

    void endElement(Context& context) {
        const XMLElements state = topState();
        --m_top;
        const std::size_t index = checkedIndex(state);
        if (EndRoutine routine = m_endRoutines[index])
            routine(context);
    }

    XMLElements topState() const {
        if (m_top < 0)
            throw Exception("empty stack");
        return m_stack[static_cast<std::size_t>(m_top)];
    }

    void push(XMLElements state) {
        ++m_top;
        if (static_cast<std::size_t>(m_top) >= m_stack.size()) {
            // An eighth more, at least 4 and at most 1,024 states: documents rarely nest
            // past the first 200, and a deep one then grows in small steps.
            std::size_t growth = m_stack.size() / 8;
            growth = growth < 4 ? 4 : (growth > 1024 ? 1024 : growth);
            m_stack.resize(m_stack.size() + growth);
        }
        m_stack[static_cast<std::size_t>(m_top)] = state;
    }

    static std::size_t checkedIndex(XMLElements element) {
        const int index = static_cast<int>(element);
        if (index < 0 || static_cast<std::size_t>(index) >= ElementCount)
            throw Exception("index out of bounds");
        return static_cast<std::size_t>(index);
    }

    std::FILE* m_file = nullptr;
    const char* m_fileName = nullptr;
    XML_Parser m_parser = nullptr;
    std::vector<XMLElements> m_stack;
    int m_top = -1;
    std::array<const Transition*, ElementCount> m_transitions{};
    std::array<StartRoutine, ElementCount> m_startRoutines{};
    std::array<CharacterRoutine, ElementCount> m_characterRoutines{};
    std::array<EndRoutine, ElementCount> m_endRoutines{};
    ParserUserData m_userData{};
    std::exception_ptr m_pending;
    std::string m_text; // reused for every character callback, so text costs no allocation
};

} // namespace ZDTAnalyzer
