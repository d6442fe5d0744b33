#include "xmldoc/FileContainer.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace ZDTAnalyzer {

// Reaches the container's hole-making seam for offsets beyond 4 GiB.
class FileContainerTestPeer {
public:
    static void appendUnwrittenRow(FileContainerBase& container, std::uint64_t size) {
        container.appendUnwrittenRow(size);
    }
};

} // namespace ZDTAnalyzer

namespace {

using namespace ZDTAnalyzer;
namespace fs = std::filesystem;
using Container = FileContainer<struct TestDocument>;

std::string row(std::initializer_list<std::string> columns) {
    std::string text;
    for (const std::string& column : columns)
        text += column + '\x01';
    return text;
}

std::string fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// "<directory>temp<seconds>_<rand>.fc"
bool isSwapFileName(const std::string& path, const std::string& directory) {
    if (path.rfind(directory + "temp", 0) != 0 || path.size() < 3 || path.substr(path.size() - 3) != ".fc")
        return false;
    const std::string middle = path.substr(directory.size() + 4, path.size() - directory.size() - 7);
    const std::size_t underscore = middle.find('_');
    const auto digits = [](const std::string& s) {
        return !s.empty() && s.find_first_not_of("0123456789") == std::string::npos;
    };
    return underscore != std::string::npos && digits(middle.substr(0, underscore)) &&
           digits(middle.substr(underscore + 1));
}

template <typename Operation> std::string messageOf(Operation operation) {
    try {
        operation();
    } catch (const FileContainerBase::Exception& e) {
        return e.message();
    }
    return "";
}

class FileContainerTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/zdt-fc-test-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        directory = std::string(pattern) + "/";
    }
    void TearDown() override { fs::remove_all(directory); }

    std::size_t filesInDirectory() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
    }

    std::string directory;
};

TEST_F(FileContainerTest, SwapFileIsPrivateNamedAndRemoved) {
    std::string firstName;
    {
        Container container;
        container.appendRow(row({"000", "ignored"})); // no file yet: nothing counted
        EXPECT_EQ(container.rowCount(), 0);

        container.createSwapFile(directory + "sub/dir"); // missing directories are made
        firstName = container.swapFileName();
        EXPECT_TRUE(isSwapFileName(firstName, directory + "sub/dir/")) << firstName;
        struct stat info {};
        ASSERT_EQ(::lstat(firstName.c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0600u);

        container.appendRow(row({"000", "a"}));
        container.createSwapFile(directory); // a fresh file replaces the first
        EXPECT_FALSE(fs::exists(firstName));
        EXPECT_EQ(container.rowCount(), 0);
        EXPECT_EQ(filesInDirectory(), 2u); // the new file and "sub"
        container.appendRow(row({"000", "b"}));
    }
    EXPECT_EQ(filesInDirectory(), 1u);
}

TEST_F(FileContainerTest, UnusableDirectoryFailsWithoutLeavingFiles) {
    std::ofstream(directory + "plain") << "x";
    Container container;
    EXPECT_EQ(messageOf([&] { container.createSwapFile(directory + "plain/below"); }), "Could not open file.");
    EXPECT_TRUE(container.swapFileName().empty());
    EXPECT_EQ(container.rowCount(), 0);
    container.appendRow("ignored");
    EXPECT_EQ(container.rowCount(), 0);
    EXPECT_EQ(filesInDirectory(), 1u);
}

TEST_F(FileContainerTest, RowsRoundTripWithClosingSpace) {
    Container container;
    container.createSwapFile(directory);
    EXPECT_EQ(messageOf([&] { container.readRow(0); }), "element with index not in this container");

    container.appendRow(row({"002", "first"}));
    container.appendRow("");
    container.appendRow(std::string("cut\0here", 8)); // a row ends at its first NUL
    ASSERT_EQ(container.rowCount(), 3);
    EXPECT_EQ(container.readRow(0), row({"002", "first"}) + " ");
    EXPECT_EQ(container.readRow(1), " ");
    EXPECT_EQ(container.readRow(2), "cut ");
    EXPECT_EQ(messageOf([&] { container.readRow(3); }), "element with index not in this container");
    container.flush();
    EXPECT_EQ(fileBytes(container.swapFileName()), row({"002", "first"}) + "  cut ");
}

TEST_F(FileContainerTest, RewriteKeepsSizeAndClearsNextFindMark) {
    Container container;
    container.createSwapFile(directory);
    container.appendRow(row({"100", "a"}));
    container.appendRow(row({"100", "b"}));

    std::string first = container.readRow(0);
    first[1] = '1';
    container.rewriteRow(0, first);
    EXPECT_EQ(container.readRow(0), row({"110", "a"}) + " ");
    EXPECT_EQ(container.readRow(1), row({" 00", "b"}) + " ");

    EXPECT_EQ(messageOf([&] { container.rewriteRow(2, ""); }), "Element not inside container.");
    EXPECT_EQ(messageOf([&] { container.rewriteRow(0, first + "x"); }),
              "Size of element new differs size of element old.");

    // Rewriting the last row puts one byte past the end; the next append covers it.
    container.rewriteRow(1, container.readRow(1));
    EXPECT_EQ(fileBytes(container.swapFileName()).size(), container.endOffset() + 1);
    container.appendRow(row({"003", "c"}));
    EXPECT_EQ(container.readRow(2), row({"003", "c"}) + " ");
    container.flush();
    EXPECT_EQ(fileBytes(container.swapFileName()),
              row({"110", "a"}) + " " + row({" 00", "b"}) + " " + row({"003", "c"}) + " ");
}

TEST_F(FileContainerTest, NegativeRowsReadAsEmptyRowsOffFile) {
    Container container;
    container.createSwapFile(directory);
    EXPECT_EQ(messageOf([&] { container.readRow(-1); }), "element with index not in this container");
    container.appendRow(row({"000", "a"}));
    EXPECT_EQ(container.readRow(-5), "");
    EXPECT_EQ(container.columnText(-5, 0), "        ");
    EXPECT_EQ(messageOf([&] { container.rewriteRow(-1, "x"); }), "Size of element new differs size of element old.");
    container.rewriteRow(-1, "");
    EXPECT_EQ(container.readRow(0), row({"000", "a"}) + " ");
}

TEST_F(FileContainerTest, ColumnsAreSplitAtSeparatorsWhateverTheirLength) {
    Container container;
    container.createSwapFile(directory);
    const std::string exact(1024, 'e');
    const std::string longer(1025, 'l');
    const std::string huge(3000, 'h');
    container.appendRow(row({"001", exact, longer, "", huge, "z"}));
    const std::vector<std::string> expected{"001", exact, longer, "", huge, "z"};
    for (int column = 0; column < 6; ++column)
        EXPECT_EQ(container.columnText(0, column), expected[static_cast<std::size_t>(column)]) << column;
    EXPECT_EQ(container.columnText(0, 6), "        ");
    EXPECT_EQ(container.columnText(0, -1), "        ");

    // Bytes behind the last separator, closing space included, are dropped, except
    // 1,024-byte pieces of them that filled up before the row ended.
    container.appendRow("a\x01" + std::string(1023, 't'));
    container.appendRow("a\x01" + std::string(1024, 't'));
    container.appendRow("a\x01" + std::string(1500, 't'));
    EXPECT_EQ(container.columnText(1, 1), "        ");
    EXPECT_EQ(container.columnText(2, 1), std::string(1024, 't'));
    EXPECT_EQ(container.columnText(3, 1), std::string(1024, 't'));
    EXPECT_EQ(container.columnText(3, 2), "        ");
}

TEST_F(FileContainerTest, CellBufferIsCutAtCapacity) {
    Container container;
    container.createSwapFile(directory);
    container.appendRow(row({"000", "abcdef", ""}));
    char cell[16];

    auto fetch = [&](int column, int capacity) {
        std::fill(std::begin(cell), std::end(cell), 'X');
        container.getColumnText(0, column, cell, capacity);
        return std::string(cell, sizeof cell);
    };
    EXPECT_EQ(fetch(1, 16).substr(0, 7), std::string("abcdef\0", 7));
    EXPECT_EQ(fetch(1, 4).substr(0, 5), std::string("abc\0X", 5));
    EXPECT_EQ(fetch(1, 1).substr(0, 2), std::string("\0X", 2));
    EXPECT_EQ(fetch(2, 16).substr(0, 2), std::string("\0X", 2));
    // Eight spaces are terminated only when room is left.
    EXPECT_EQ(fetch(3, 16).substr(0, 9), std::string("        \0", 9));
    EXPECT_EQ(fetch(3, 5).substr(0, 5), "    X");
    EXPECT_EQ(fetch(3, 0), std::string(16, 'X'));
    EXPECT_EQ(messageOf([&] { container.getColumnText(1, 0, cell, 16); }), "element with index not in this container");
}

TEST_F(FileContainerTest, CacheHoldsOneRowUntilAnotherIsFetched) {
    Container container;
    container.createSwapFile(directory);
    container.appendRow(row({"000", "old"}));
    container.appendRow(row({"000", "other"}));
    EXPECT_EQ(container.columnText(0, 1), "old");
    std::string text = container.readRow(0);
    text.replace(4, 3, "new");
    container.rewriteRow(0, text);
    EXPECT_EQ(container.columnText(0, 1), "old");
    EXPECT_EQ(container.columnText(1, 1), "other");
    EXPECT_EQ(container.columnText(0, 1), "new");

    // A failed fetch empties the cache but keeps its row index.
    EXPECT_EQ(messageOf([&] { container.columnText(9, 0); }), "element with index not in this container");
    EXPECT_EQ(container.columnText(0, 1), "        ");
}

// Buffered appends must leave the file exactly as direct writes of every operation.
TEST_F(FileContainerTest, MixedOperationsMatchDirectWrites) {
    Container container;
    container.createSwapFile(directory);
    std::string model;
    std::vector<std::size_t> starts{0};
    std::mt19937 random(7);
    for (int step = 0; step < 20000; ++step) {
        const std::size_t rows = starts.size() - 1;
        const auto choice = random() % 10;
        if (rows == 0 || choice < 7) {
            const std::string text = row(
                {"00" + std::to_string(random() % 4), std::string(random() % 300, static_cast<char>('a' + step % 26))});
            model.resize(starts.back());
            model += text + " ";
            starts.push_back(model.size());
            container.appendRow(text);
        } else {
            const std::size_t index = random() % rows;
            const auto rowIndex = static_cast<zdt::RowIndex>(index);
            std::string text = model.substr(starts[index], starts[index + 1] - starts[index]);
            if (choice == 9) { // otherwise rewrite while appends may still be buffered
                ASSERT_EQ(container.readRow(rowIndex), text) << step;
            }
            text[1] = text[1] == '1' ? '0' : '1';
            container.rewriteRow(rowIndex, text);
            model.replace(starts[index], text.size(), text);
            if (model.size() == starts[index + 1])
                model += ' ';
            else
                model[starts[index + 1]] = ' ';
        }
    }
    container.flush();
    EXPECT_EQ(fileBytes(container.swapFileName()), model);
}

// A list paints rows while the read that makes them still appends: every row counted is
// read back whole, whether it is on file already or still in the write buffer.
TEST_F(FileContainerTest, RowsReadWhileAnotherThreadAppendsAreWhole) {
    Container container;
    container.createSwapFile(directory);
    const auto textOf = [](zdt::RowIndex index) {
        return row({"00" + std::to_string(index % 4), std::string(static_cast<std::size_t>(index % 97), 'x'),
                    std::to_string(index)});
    };
    constexpr zdt::RowIndex Rows = 50000;
    std::thread appender([&] {
        for (zdt::RowIndex index = 0; index < Rows; ++index)
            container.appendRow(textOf(index));
    });
    std::mt19937 random(3);
    int reads = 0;
    for (zdt::RowCount counted = 0; counted < Rows; ++reads) {
        counted = container.rowCount();
        if (counted == 0)
            continue;
        // Now the newest row, most likely still buffered; then any older one.
        const auto newest = static_cast<zdt::RowIndex>(counted - 1);
        const auto older = static_cast<zdt::RowIndex>(random() % static_cast<std::uint32_t>(counted));
        for (const zdt::RowIndex index : {newest, older}) {
            ASSERT_EQ(container.readRow(index), textOf(index) + " ") << index;
            ASSERT_EQ(container.columnText(index, 2), std::to_string(index));
        }
    }
    appender.join();
    EXPECT_GT(reads, 1);
    container.flush();
    std::string expected;
    for (zdt::RowIndex index = 0; index < Rows; ++index)
        expected += textOf(index) + " ";
    EXPECT_EQ(fileBytes(container.swapFileName()), expected);
}

TEST_F(FileContainerTest, OffsetsBeyondFourGigabytes) {
    Container container;
    container.createSwapFile(directory);
    container.appendRow(row({"000", "before"}));
    const std::uint64_t hole = (std::uint64_t(5) << 30) - 3;
    FileContainerTestPeer::appendUnwrittenRow(container, hole);
    for (int i = 0; i < 1000; ++i)
        container.appendRow(row({"000", "after" + std::to_string(i)}));
    EXPECT_GT(container.endOffset(), std::uint64_t(5) << 30);
    EXPECT_EQ(container.readRow(0), row({"000", "before"}) + " ");
    EXPECT_EQ(container.readRow(2), row({"000", "after0"}) + " ");
    EXPECT_EQ(container.columnText(1001, 1), "after999");

    std::string text = container.readRow(500);
    text[0] = '1';
    container.rewriteRow(500, text);
    EXPECT_EQ(container.readRow(500)[0], '1');
    EXPECT_EQ(container.readRow(501)[0], ' ');
    EXPECT_EQ(fs::file_size(container.swapFileName()), container.endOffset());
}

TEST_F(FileContainerTest, FullDiskKeepsRowsOnFileAndRefusesMore) {
    struct rlimit saved {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    auto* previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    std::string name;
    {
        Container container;
        container.createSwapFile(directory);
        name = container.swapFileName();
        struct rlimit limited = saved;
        limited.rlim_cur = 1 << 20;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);

        const std::string text = row({"000", std::string(1000, 'r')});
        std::string message;
        int appended = 0;
        for (; appended < 5000 && message.empty(); ++appended)
            message = messageOf([&] { container.appendRow(text); });
        ::setrlimit(RLIMIT_FSIZE, &saved);

        EXPECT_EQ(message, "_tcserror does not exist within VS6");
        EXPECT_LT(appended, 5000);
        EXPECT_GT(container.rowCount(), 0);
        EXPECT_LE(static_cast<std::uint64_t>(container.rowCount()) * (text.size() + 1), std::uint64_t(1) << 20);
        EXPECT_EQ(container.readRow(container.rowCount() - 1), text + " ");
        EXPECT_EQ(messageOf([&] { container.readRow(container.rowCount()); }),
                  "element with index not in this container");
        EXPECT_EQ(messageOf([&] { container.appendRow(text); }), "_tcserror does not exist within VS6");
    }
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(fs::exists(name));
}

} // namespace
