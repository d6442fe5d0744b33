#pragma once

#include <string>
#include <string_view>

namespace ZDTAnalyzer {

// The three document kinds that export, each with its own sheets and PDF script.
enum class ConversionKind { Snapshot, Xpvt701, Xpvt702 };

// The sheets and the PDF script of one kind.
struct KindSheets {
    std::string html;
    std::string rtfStage1;
    std::string rtfStage2;
    std::string csvDirectory;
    std::string csvComma;     // "," between fields
    std::string csvSemicolon; // ";" between fields
    std::string fo;           // what the PDF script turns into XSL-FO
    std::string pdfScript;
};

// Every installation path of the conversions, below the installation folder `analyzerDir`
// ("<program dir>/Analyzer/", with its trailing "/").
class ConversionPaths {
public:
    explicit ConversionPaths(std::string analyzerDir);

    // The paths of the running program, computed once.
    static const ConversionPaths& installed();

    const std::string& analyzerDir() const { return m_analyzerDir; }
    std::string xalanScript() const { return m_analyzerDir + "xalan.sh"; }
    // Lays out XSL-FO as PDF; the kinds' PDF scripts end in it.
    std::string formatterScript() const { return m_analyzerDir + "fo2pdf.sh"; }
    std::string temporaryRoot() const { return m_analyzerDir + "Temp/"; }
    std::string filterDirectory() const { return m_analyzerDir + "FilterDefaultDir/"; }
    KindSheets sheets(ConversionKind kind) const;
    // The CSV sheet of `kind` for the list separator `separator`.
    std::string csvSheet(ConversionKind kind, char separator) const;

private:
    std::string m_analyzerDir;
};

// The list separator of a locale that writes `decimalPoint` as its decimal point: ";" where
// the decimal point is ",", so that numbers keep their commas; "," everywhere else.
char ListSeparatorForDecimalPoint(std::string_view decimalPoint);

// The list separator of the environment's LC_NUMERIC locale. Sets that locale category.
char EnvironmentListSeparator();

} // namespace ZDTAnalyzer
