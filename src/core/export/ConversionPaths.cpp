#include "export/ConversionPaths.h"

#include "app/WellKnownPaths.h"

#include <clocale>
#include <utility>

namespace ZDTAnalyzer {

ConversionPaths::ConversionPaths(std::string analyzerDir) : m_analyzerDir(std::move(analyzerDir)) {
    if (!m_analyzerDir.empty() && m_analyzerDir.back() != '/')
        m_analyzerDir += '/';
}

const ConversionPaths& ConversionPaths::installed() {
    static const ConversionPaths paths(zdt::AnalyzerBinaryDir());
    return paths;
}

KindSheets ConversionPaths::sheets(ConversionKind kind) const {
    const std::string xsl = m_analyzerDir + "xsl/";
    switch (kind) {
    case ConversionKind::Snapshot:
        return {xsl + "snp/html/snp_to_html.xsl",
                xsl + "snp/rtf/snp_to_xhtml_for_rtf.xsl",
                xsl + "snp/rtf/snp_to_xhtml_for_rtf_to_rtf.xsl",
                xsl + "snp/csv/",
                xsl + "snp/csv/snp_to_csv.xsl",
                xsl + "snp/csv/snp_to_csv1.xsl",
                xsl + "snp/pdf/snp_to_fo.xsl",
                m_analyzerDir + "snp2pdf/snp2pdf.sh"};
    case ConversionKind::Xpvt701:
        return {xsl + "xpvt/html/xpvt_to_html.xsl",
                xsl + "xpvt/rtf/xpvt_to_xhtml_for_rtf.xsl",
                xsl + "xpvt/rtf/xpvt_to_xhtml_for_rtf_to_rtf.xsl",
                xsl + "xpvt/csv/",
                xsl + "xpvt/csv/xpvt_to_csv.xsl",
                xsl + "xpvt/csv/xpvt_to_csv1.xsl",
                xsl + "xpvt/pdf/xpvt_to_fo.xsl",
                m_analyzerDir + "xpvt2pdf/xpvt2pdf.sh"};
    case ConversionKind::Xpvt702:
        break;
    }
    return {xsl + "xpvt_7_02/html/xpvt_to_html.xsl", xsl + "xpvt_7_02/rtf/xpvt_to_xhtml.xsl",
            xsl + "xpvt_7_02/rtf/xhtml_to_rtf.xsl",  xsl + "xpvt_7_02/csv/",
            xsl + "xpvt_7_02/csv/xpvt_to_csv.xsl",   xsl + "xpvt_7_02/csv/xpvt_to_csv1.xsl",
            xsl + "xpvt_7_02/pdf/xpvt_to_fo.xsl",    m_analyzerDir + "xpvt702topdf/xpvt702topdf.sh"};
}

std::string ConversionPaths::csvSheet(ConversionKind kind, char separator) const {
    const KindSheets kindSheets = sheets(kind);
    return separator == ';' ? kindSheets.csvSemicolon : kindSheets.csvComma;
}

char ListSeparatorForDecimalPoint(std::string_view decimalPoint) {
    return decimalPoint == "," ? ';' : ',';
}

char EnvironmentListSeparator() {
    std::setlocale(LC_NUMERIC, "");
    const std::lconv* conventions = std::localeconv();
    const char* decimalPoint = conventions != nullptr ? conventions->decimal_point : nullptr;
    return ListSeparatorForDecimalPoint(decimalPoint != nullptr ? decimalPoint : ".");
}

} // namespace ZDTAnalyzer
