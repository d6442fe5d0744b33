// Arbitrary bytes through the table-driven parser with a small format whose routines
// build rows in a swap-file container, then every row's cells read back.
#include "xmldoc/FileContainer.h"
#include "xmldoc/SaxParser.h"

#include <cstdint>
#include <string>
#include <unistd.h>

namespace {

using namespace ZDTAnalyzer;

struct RowSink {
    FileContainer<RowSink> rows;
};

struct FuzzTraits {
    // list > item (catch-all) > value; items nest in items.
    enum XMLElements : int { List, Item, Value, UnknownElement, DocumentRoot };
    using Consumer = RowSink;
    using Parser = SaxParser<FuzzTraits>;
    using Context = ConsumerContext<RowSink>;

    static void startItem(Context& c, const char** attributes) {
        c.slots[0].clear();
        for (const char** a = attributes; *a != nullptr; a += 2)
            c.slots[0] += std::string(a[0]) + "=" + a[1] + ";";
    }
    static void valueText(Context& c, const std::string& text) {
        // Keep rows free of the bytes the container gives a meaning to.
        for (char byte : text)
            if (static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F)
                c.slots[1] += byte;
    }
    static void endItem(Context& c) {
        if (c.consumer != nullptr)
            c.consumer->rows.appendRow("000\x01" + c.slots[0] + "\x01" + c.slots[1] + "\x01");
        c.slots[1].clear();
    }

    static void install(Parser& parser) {
        static const Parser::Transition root[] = {{"list", List}, {"", UnknownElement}};
        static const Parser::Transition list[] = {{"", Item}};
        static const Parser::Transition item[] = {{"value", Value}, {"item", Item}, {"", UnknownElement}};
        parser.setAllTransitions(Parser::defaultTransitions());
        parser.setTransitions(DocumentRoot, root);
        parser.setTransitions(List, list);
        parser.setTransitions(Item, item);
        parser.setStartRoutine(Item, startItem);
        parser.setAllCharacterRoutines(nullptr);
        parser.setCharacterRoutine(Value, valueText);
        parser.setAllEndRoutines(nullptr);
        parser.setEndRoutine(Item, endItem);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    char path[] = "/tmp/zdt-fuzz-sax-XXXXXX";
    const int fd = ::mkstemp(path);
    if (fd < 0)
        return 0;
    const bool written = ::write(fd, bytes, size) == static_cast<ssize_t>(size);
    ::close(fd);
    if (written) {
        RowSink sink;
        try {
            sink.rows.createSwapFile("/tmp/zdt-fuzz-sax-swap/");
            FuzzTraits::Parser parser;
            FuzzTraits::Context context(&sink);
            parser.parse(path, context);
        } catch (const FuzzTraits::Parser::Exception&) {
        } catch (const FileContainerBase::Exception&) {
        }
        char cell[64];
        for (int row = 0; row < sink.rows.rowCount() && row < 500; ++row)
            for (int column = 0; column < 4; ++column)
                sink.rows.getColumnText(row, column, cell, sizeof cell);
    }
    ::unlink(path);
    return 0;
}
