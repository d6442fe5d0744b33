#pragma once

#include "common/ChildProcess.h"
#include "export/ConversionPipeline.h"

#include "support/TempDir.h"

#include <filesystem>
#include <string>

// An installation folder of its own for a test: the real scripts, and sheets the test writes.
class ExportInstallation {
public:
    ExportInstallation() {
        namespace fs = std::filesystem;
        const fs::path source = fs::path(__FILE__).parent_path() / "../../../Analyzer";
        for (const char* file : {"xalan.sh", "xml2pdf.sh", "fo2pdf.sh", "fop.xconf", "snp2pdf/snp2pdf.sh",
                                 "xpvt2pdf/xpvt2pdf.sh", "xpvt702topdf/xpvt702topdf.sh"}) {
            const fs::path target = fs::path(analyzerDir()) / file;
            fs::create_directories(target.parent_path());
            fs::copy_file(source / file, target);
        }
        fs::create_directories(temporaryDirectory());
    }

    // The installation's own sheets, in place of any the test wrote.
    void copyRealSheets() const {
        namespace fs = std::filesystem;
        const fs::path source = fs::path(__FILE__).parent_path() / "../../../Analyzer/xsl";
        fs::copy(source, fs::path(analyzerDir()) / "xsl",
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    }

    std::string analyzerDir() const { return m_dir.File("Analyzer") + "/"; }
    std::string temporaryDirectory() const { return m_dir.File("run") + "/"; }
    const TempDir& dir() const { return m_dir; }

    // Writes `text` at `relativePath` below the installation folder.
    std::string write(const std::string& relativePath, const std::string& text) const {
        const std::filesystem::path target = std::filesystem::path(analyzerDir()) / relativePath;
        std::filesystem::create_directories(target.parent_path());
        return m_dir.Write((target.lexically_relative(m_dir.Path())).string(), text);
    }

    ZDTAnalyzer::ConversionSettings settings(char listSeparator = ',') const {
        ZDTAnalyzer::ConversionSettings settings{ZDTAnalyzer::ConversionPaths(analyzerDir()), temporaryDirectory(),
                                                 listSeparator, 0, 0};
        return settings;
    }

    static bool HasTools() { return !zdt::FindProgramOnPath("Xalan").empty(); }
    static bool HasPdfTools() {
        return HasTools() && !zdt::FindProgramOnPath("fop").empty() && !zdt::FindProgramOnPath("pdftotext").empty();
    }

private:
    TempDir m_dir;
};

// A sheet of plain text: the container's children by name, between a head and a tail
// that the piece position decides, and the first line number of the piece.
inline std::string ChildListSheet() {
    return R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:param name="chunk" select="'whole'"/>
<xsl:param name="first-line" select="1"/>
<xsl:output method="text" encoding="UTF-8"/>
<xsl:template match="/">
<xsl:if test="$chunk='whole' or $chunk='first'">HEAD instructions=<xsl:value-of
 select="count(/processing-instruction())"/><xsl:text>&#10;</xsl:text></xsl:if>
<xsl:text>@</xsl:text><xsl:value-of select="$first-line"/><xsl:text>&#10;</xsl:text>
<xsl:for-each select="/*/Trace/* | /SnapList/*"><xsl:value-of select="name()"/><xsl:text>&#10;</xsl:text></xsl:for-each>
<xsl:if test="$chunk='whole' or $chunk='last'">TAIL&#10;</xsl:if>
</xsl:template>
</xsl:stylesheet>
)XSL";
}

// A sheet that writes `text` whatever it is given.
inline std::string FixedTextSheet(const std::string& text) {
    return R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text"/><xsl:template match="/">)XSL" +
           text + R"XSL(</xsl:template></xsl:stylesheet>
)XSL";
}

// A sheet that stops the tool with `message` on its standard error.
inline std::string FailingSheet(const std::string& message) {
    return R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:template match="/"><xsl:message terminate="yes">)XSL" +
           message + R"XSL(</xsl:message></xsl:template></xsl:stylesheet>
)XSL";
}
