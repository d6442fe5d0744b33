#include "xmldoc/SaxParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace {

using namespace ZDTAnalyzer;

// A small library format: library > book (title, author), library > shelf whose every
// child is a note (the catch-all row names a real element), and notes nest in notes.
struct Recorder {
    std::vector<std::string> events;
    std::vector<std::string> textPieces;
    // Lets a routine swap tables while the parse runs, as a schema switch does.
    void* parser = nullptr;
    bool throwOnBook = false;
};

template <int Variant> struct LibraryTraits {
    enum XMLElements : int { Library, Book, Title, Author, Shelf, Note, UnknownElement, DocumentRoot };
    using Consumer = Recorder;
    using Parser = SaxParser<LibraryTraits>;
    using Context = ConsumerContext<Recorder>;

    static void startLibrary(Context& c, const char** attributes) {
        c.consumer->events.push_back(attributes[0] == nullptr ? "library(no attributes)" : "library(attributes)");
    }
    static void startBook(Context& c, const char** attributes) {
        if (c.consumer->throwOnBook)
            throw std::runtime_error("routine failed");
        std::string event = "book";
        for (const char** a = attributes; *a != nullptr; a += 2)
            event += std::string(" ") + a[0] + "=" + a[1];
        c.consumer->events.push_back(event);
    }
    static void titleText(Context& c, const std::string& text) {
        c.slots[0] += text;
        c.consumer->textPieces.push_back(text);
    }
    static void endTitle(Context& c) {
        c.consumer->events.push_back("title:" + c.slots[0]);
        c.slots[0].clear();
    }
    static void endBook(Context& c) { c.consumer->events.push_back("/book"); }
    static void startNote(Context& c, const char**) { c.consumer->events.push_back("note"); }
    static void endNote(Context& c) { c.consumer->events.push_back("/note"); }
    static void endShelf(Context& c) {
        // Afterwards a book is no longer a book: its title goes unread.
        static const typename Parser::Transition booksIgnored[] = {{"", UnknownElement}};
        static_cast<Parser*>(c.consumer->parser)->setTransitions(Library, booksIgnored);
    }

    static void install(Parser& parser) {
        static const typename Parser::Transition root[] = {{"library", Library}, {"", UnknownElement}};
        static const typename Parser::Transition library[] = {{"book", Book}, {"shelf", Shelf}, {"", UnknownElement}};
        static const typename Parser::Transition book[] = {{"title", Title}, {"author", Author}, {"", UnknownElement}};
        static const typename Parser::Transition shelf[] = {{"", Note}};
        parser.setAllTransitions(Parser::defaultTransitions());
        parser.setTransitions(DocumentRoot, root);
        parser.setTransitions(Library, library);
        parser.setTransitions(Book, book);
        parser.setTransitions(Shelf, shelf);
        parser.setTransitions(Note, shelf);
        parser.setStartRoutine(Library, startLibrary);
        parser.setStartRoutine(Book, startBook);
        parser.setStartRoutine(Note, startNote);
        parser.setAllCharacterRoutines(nullptr);
        parser.setCharacterRoutine(Title, titleText);
        parser.setAllEndRoutines(nullptr);
        parser.setEndRoutine(Title, endTitle);
        parser.setEndRoutine(Book, endBook);
        parser.setEndRoutine(Note, endNote);
        if constexpr (Variant == 1)
            parser.setEndRoutine(Shelf, endShelf);
        if constexpr (Variant == 2)
            parser.setStartRoutine(static_cast<XMLElements>(DocumentRoot + 1), startNote);
        if constexpr (Variant == 3)
            parser.setEndRoutine(static_cast<XMLElements>(-1), endNote);
        if constexpr (Variant == 4) {
            static const typename Parser::Transition broken[] = {{"", static_cast<XMLElements>(42)}};
            parser.setTransitions(Library, broken);
        }
    }
};

using Traits = LibraryTraits<0>;
using Parser = SaxParser<Traits>;

static_assert(!std::is_same_v<Parser::Exception, SaxParser<LibraryTraits<1>>::Exception>,
              "each traits class needs its own exception type");

class SaxParserTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/zdt-sax-test-XXXXXX";
        const int fd = ::mkstemp(pattern);
        ASSERT_GE(fd, 0);
        ::close(fd);
        path = pattern;
    }
    void TearDown() override { ::unlink(path.c_str()); }

    void write(const std::string& content) {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << content;
    }

    // Parses the file and returns the message of the engine's exception, if any.
    template <typename T = Traits> std::string parse(Parser::ProgressCallback progress = {}) {
        SaxParser<T> parser;
        ConsumerContext<Recorder> context(&recorder);
        recorder.parser = &parser;
        try {
            parser.parse(path.c_str(), context, std::move(progress));
        } catch (const typename SaxParser<T>::Exception& e) {
            return e.message();
        }
        return "";
    }

    std::string path;
    Recorder recorder;
};

using Events = std::vector<std::string>;

TEST_F(SaxParserTest, EmptyFileAndOtherFormatsGiveNoEventsAndNoError) {
    write("");
    EXPECT_EQ(parse(), "");
    EXPECT_TRUE(recorder.events.empty());

    write("<?xml version=\"1.0\"?><catalog><book><title>x</title></book></catalog>");
    EXPECT_EQ(parse(), "");
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(SaxParserTest, MissingFileIsReported) {
    ::unlink(path.c_str());
    EXPECT_EQ(parse(), "Could not open input xml file.");
}

TEST_F(SaxParserTest, StateNotNameDecidesWhichRoutinesRun) {
    write("<library><title>misplaced</title>"
          "<book id=\"1\" lang=\"en\"><title>A</title><extra><title>deep</title></extra></book>"
          "<unknown><book><title>hidden</title></book></unknown>"
          "<shelf><anything/><book><title>also a note</title></book></shelf>"
          "<book><title>B</title></book></library>");
    EXPECT_EQ(parse(), "");
    EXPECT_EQ(recorder.events, (Events{"library(no attributes)", "book id=1 lang=en", "title:A", "/book", "note",
                                       "/note", "note", "note", "/note", "/note", "book", "title:B", "/book"}));
}

TEST_F(SaxParserTest, RoutinesMaySwapTablesWhileTheParseRuns) {
    write("<library><book><title>A</title></book><shelf/><book><title>B</title></book></library>");
    EXPECT_EQ(parse<LibraryTraits<1>>(), "");
    EXPECT_EQ(recorder.events, (Events{"library(no attributes)", "book", "title:A", "/book"}));
}

TEST_F(SaxParserTest, CharacterDataArrivesPiecewiseAndUnjoined) {
    // The title straddles the first block boundary and holds an entity and a line break.
    std::string head = "<library><book><title>";
    const std::string padding(Parser::BlockSize - head.size() - 5, 'p');
    const std::string title = padding + "abcdefghij&amp;x\r\ny";
    write(head + title + "</title></book></library>");
    EXPECT_EQ(parse(), "");
    EXPECT_GE(recorder.textPieces.size(), 4u);
    std::string joined;
    for (const std::string& piece : recorder.textPieces)
        joined += piece;
    EXPECT_EQ(joined, padding + "abcdefghij&x\ny");
    EXPECT_EQ(recorder.events.at(2), "title:" + joined);
}

TEST_F(SaxParserTest, LargeTextsAndAttributesPassWhole) {
    const std::string megabyte(1 << 20, 't');
    write("<library><book id=\"" + megabyte + "\"><title>" + megabyte + "</title></book></library>");
    EXPECT_EQ(parse(), "");
    ASSERT_EQ(recorder.events.size(), 4u);
    EXPECT_EQ(recorder.events[1], "book id=" + megabyte);
    EXPECT_EQ(recorder.events[2], "title:" + megabyte);
}

TEST_F(SaxParserTest, CutAtBlockBoundaryPassesButCutElsewhereFails) {
    std::string document = "<library>\n";
    while (document.size() < 3 * Parser::BlockSize)
        document += "<book><title>t</title></book>\n";
    document += "</library>\n";

    write(document.substr(0, 2 * Parser::BlockSize));
    EXPECT_EQ(parse(), "");
    const std::size_t booksBeforeBoundary = recorder.events.size();
    EXPECT_GT(booksBeforeBoundary, 100u);

    for (std::size_t cut : {2 * Parser::BlockSize - 1, 2 * Parser::BlockSize + 1}) {
        write(document.substr(0, cut));
        recorder.events.clear();
        const std::string lines =
            std::to_string(std::count(document.begin(), document.begin() + static_cast<std::ptrdiff_t>(cut), '\n') + 1);
        EXPECT_EQ(parse(), "XML error: " + lines + " unclosed token");
        EXPECT_GE(recorder.events.size(), booksBeforeBoundary - 4); // rows before the failure stay
    }
}

TEST_F(SaxParserTest, MalformedInputReportsLineAndExpatText) {
    write("<library>\n<book>\n<title>a</titel>\n</book></library>");
    EXPECT_EQ(parse(), "XML error: 3 mismatched tag");
    write("<library>\n<bo\x01ok/></library>");
    EXPECT_EQ(parse(), "XML error: 2 not well-formed (invalid token)");
}

TEST_F(SaxParserTest, DeepNestingGrowsTheStack) {
    const int depth = 10000;
    std::string document = "<library><shelf>";
    for (int i = 0; i < depth; ++i)
        document += "<n>";
    for (int i = 0; i < depth; ++i)
        document += "</n>";
    document += "</shelf><book/></library>";
    write(document);
    EXPECT_EQ(parse(), "");
    ASSERT_EQ(recorder.events.size(), 1u + 2 * depth + 2);
    EXPECT_EQ(recorder.events[depth], "note");
    EXPECT_EQ(recorder.events[depth + 1], "/note");
    EXPECT_EQ(recorder.events.back(), "/book");
}

TEST_F(SaxParserTest, EntityExpansionIsStoppedByExpat) {
    std::string document = "<?xml version=\"1.0\"?>\n<!DOCTYPE library [\n<!ENTITY a0 \"lollollollollollol\">\n";
    for (int i = 1; i <= 12; ++i) {
        document += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j)
            document += "&a" + std::to_string(i - 1) + ";";
        document += "\">\n";
    }
    document += "]>\n<library><book><title>&a12;</title></book></library>\n";
    write(document);
    const std::string message = parse();
    EXPECT_EQ(message.rfind("XML error: ", 0), 0u) << message;
    EXPECT_NE(message.find("amplification"), std::string::npos) << message;
}

TEST_F(SaxParserTest, ExternalEntitiesAreNeverFetched) {
    const std::string secretPath = path + ".secret";
    std::ofstream(secretPath) << "SECRET-CONTENT";
    write("<?xml version=\"1.0\"?>\n<!DOCTYPE library [<!ENTITY ext SYSTEM \"file://" + secretPath +
          "\">]>\n<library><book><title>[&ext;]</title></book></library>");
    parse();
    ::unlink(secretPath.c_str());
    for (const std::string& event : recorder.events)
        EXPECT_EQ(event.find("SECRET"), std::string::npos);
    EXPECT_NE(std::find(recorder.events.begin(), recorder.events.end(), "title:[]"), recorder.events.end());
}

TEST_F(SaxParserTest, RoutineExceptionsLeaveThroughTheParseAndStopIt) {
    write("<library><book><title>x</title></book><book/></library>");
    recorder.throwOnBook = true;
    EXPECT_THROW(parse(), std::runtime_error);
    EXPECT_EQ(recorder.events, Events{"library(no attributes)"});
}

TEST_F(SaxParserTest, BadIndexesRaiseIndexOutOfBounds) {
    write("<library><book/></library>");
    EXPECT_EQ(parse<LibraryTraits<2>>(), "index out of bounds");
    EXPECT_EQ(parse<LibraryTraits<3>>(), "index out of bounds");
    EXPECT_EQ(parse<LibraryTraits<4>>(), "index out of bounds");
    // The table fault strikes at the first child of library, after library's routine.
    EXPECT_EQ(recorder.events, Events{"library(no attributes)"});
}

TEST_F(SaxParserTest, ProgressReportsBlocksAndCanCancel) {
    std::string document = "<library>";
    while (document.size() < 25000)
        document += "<book/>";
    document += "</library>";
    write(document);

    std::vector<std::uint64_t> reports;
    EXPECT_EQ(parse([&](std::uint64_t bytes) {
                  reports.push_back(bytes);
                  return true;
              }),
              "");
    EXPECT_EQ(reports, (std::vector<std::uint64_t>{10240, 20480, document.size()}));

    recorder.events.clear();
    Parser parser;
    ConsumerContext<Recorder> context(&recorder);
    EXPECT_THROW(parser.parse(path.c_str(), context, [](std::uint64_t) { return false; }), Parser::Cancelled);
    // Only the first block was parsed: each <book/> gives two events.
    EXPECT_LE(recorder.events.size(), 1 + 2 * (10240u / 7));
    EXPECT_GT(recorder.events.size(), 2 * (10240u / 7) - 4);
}

} // namespace
