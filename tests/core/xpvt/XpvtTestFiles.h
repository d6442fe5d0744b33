#pragma once

#include "support/RecordingMessages.h"
#include "support/TempDir.h"
#include "xpvt/XpvtDoc.h"

#include <filesystem>
#include <string>
#include <vector>

namespace xpvttest {

// One stored row split into its fields; field 0 is the row flags ("00<kind>").
using Fields = std::vector<std::string>;

// The fields of a stored row: each closed by 0x01; what follows the last one (the
// swap file's closing space) is not a field.
inline Fields splitFields(const std::string& stored) {
    Fields fields;
    std::size_t start = 0;
    for (std::size_t end; (end = stored.find('\x01', start)) != std::string::npos; start = end + 1)
        fields.push_back(stored.substr(start, end - start));
    return fields;
}

inline std::vector<Fields> rowsOf(ZDTAnalyzer::XpvtDoc& doc) {
    std::vector<Fields> rows;
    for (int row = 0; row < doc.container().rowCount(); ++row)
        rows.push_back(splitFields(doc.container().readRow(row)));
    return rows;
}

// A whole trace file: the header's inner XML (with DateTime attribute when given) and
// the inner XML of Trace.
inline std::string xpvtFile(const std::string& descriptionInner, const std::string& traceInner,
                            const std::string& descriptionAttributes = "") {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessValueTrace>\n<Description" + descriptionAttributes +
           ">" + descriptionInner + "</Description>\n<Trace>\n" + traceInner + "\n</Trace>\n</ProcessValueTrace>\n";
}

inline std::string trace701(const std::string& traceInner) {
    return xpvtFile("<Schema>7.01</Schema>", traceInner);
}

inline std::string trace702(const std::string& traceInner) {
    return xpvtFile("<Schema>7,02</Schema>", traceInner);
}

// Writes `xml` into a fresh temporary directory and opens a document on it, with its
// swap file in the subdirectory "swap" and its boxes recorded.
class OpenedTrace {
public:
    explicit OpenedTrace(const std::string& xml, const std::string& fileName = "trace.xpvt")
        : path(dir.Write(fileName, xml)), swapDirectory(dir.File("swap")) {
        opened = doc.OnOpenDocument(path, swapDirectory, &messages);
    }

    std::vector<Fields> rows() { return rowsOf(doc); }

    // Number of swap files left in the swap directory.
    int swapFileCount() const {
        int count = 0;
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(swapDirectory, ignored))
            count += entry.path().extension() == ".fc" ? 1 : 0;
        return count;
    }

    TempDir dir;
    std::string path;
    std::string swapDirectory;
    RecordingMessages messages;
    ZDTAnalyzer::XpvtDoc doc;
    bool opened = false;
};

} // namespace xpvttest
