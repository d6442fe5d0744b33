// The export sheets under Analyzer/xsl, run by Xalan-C as the conversions run them, must
// show exactly the rows of the list: every CSV record and HTML table row is compared, field
// by field, with `zdt-cli rows` on samples and generated traces of the snapshot, 7.01 and
// 7.02 families.

#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "support/CliRunner.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Record = std::vector<std::string>;

const std::string SheetsDir = std::string(ZDT_SAMPLES_DIR) + "/../Analyzer/xsl/";

bool XalanInstalled() {
    return std::system("command -v Xalan >/dev/null 2>&1") == 0;
}

// Runs Xalan on `input` with `sheet` (relative to the sheets' folder) and returns the
// output; the output goes through a file, as the conversions write it.
std::string RunSheet(const TempDir& dir, const std::string& sheet, const std::string& input,
                     const std::vector<std::pair<std::string, std::string>>& params = {}) {
    const std::string out = dir.File("sheet.out");
    std::string command = "Xalan -o " + ShellQuote(out);
    for (const auto& [name, value] : params)
        command += " -p " + ShellQuote(name) + " " + ShellQuote("'" + value + "'");
    command +=
        " " + ShellQuote(input) + " " + ShellQuote(SheetsDir + sheet) + " 2>" + ShellQuote(dir.File("xalan.err"));
    std::remove(out.c_str());
    const int status = std::system(command.c_str());
    EXPECT_EQ(status, 0) << sheet << " on " << input << ": " << TempDir::Read(dir.File("xalan.err"));
    return TempDir::Read(out);
}

// What the list draws for its bytes: a byte that belongs to no UTF-8 character (a name cut
// inside one) shows as a replacement character.
std::string AsShown(const std::string& bytes) {
    std::string shown;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = lead < 0x80                    ? 1
                                   : lead >= 0xC2 && lead <= 0xDF ? 2
                                   : lead >= 0xE0 && lead <= 0xEF ? 3
                                   : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                                  : 0;
        bool valid = length != 0 && i + length <= bytes.size();
        for (std::size_t k = 1; valid && k < length; ++k)
            valid = (static_cast<unsigned char>(bytes[i + k]) & 0xC0) == 0x80;
        if (valid) {
            shown.append(bytes, i, length);
            i += length;
        } else {
            shown += "\xEF\xBF\xBD";
            ++i;
        }
    }
    return shown;
}

struct ListRow {
    char colour = '?';
    Record cells; // line number, then the fields
};

// `zdt-cli rows`: LINE, ROWFLAGS, then the fields, as the list shows them.
std::vector<ListRow> ListRows(const TempDir& dir, const std::string& file) {
    const CliRun run = RunCliInHome(dir, {"rows", file});
    EXPECT_EQ(run.status, 0) << run.err;
    std::vector<ListRow> rows;
    std::istringstream lines(run.out);
    std::string line;
    while (std::getline(lines, line)) {
        Record fields;
        std::size_t start = 0;
        for (std::size_t tab; (tab = line.find('\t', start)) != std::string::npos; start = tab + 1)
            fields.push_back(AsShown(line.substr(start, tab - start)));
        fields.push_back(AsShown(line.substr(start)));
        ListRow row;
        row.colour = fields.size() > 1 && fields[1].size() == 3 ? fields[1][2] : '?';
        row.cells.push_back(fields[0]);
        row.cells.insert(row.cells.end(), fields.begin() + 2, fields.end());
        rows.push_back(std::move(row));
    }
    return rows;
}

// RFC 4180: quoted fields may hold separators, quotes (doubled) and line breaks.
std::vector<Record> ParseCsv(const std::string& text, char separator) {
    std::vector<Record> records;
    Record record;
    std::string field;
    bool quoted = false, fieldStarted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
                field += '"';
                ++i;
            } else if (c == '"') {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == '"' && field.empty()) {
            quoted = fieldStarted = true;
        } else if (c == separator) {
            record.push_back(field);
            field.clear();
        } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            continue;
        } else if (c == '\n') {
            record.push_back(field);
            records.push_back(record);
            record.clear();
            field.clear();
            fieldStarted = false;
        } else {
            field += c;
            fieldStarted = true;
        }
    }
    EXPECT_FALSE(quoted) << "unterminated quoted field";
    EXPECT_TRUE(field.empty() && record.empty() && !fieldStarted) << "last line without a line end";
    return records;
}

void AppendUtf8(std::string& out, unsigned long code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// Character references and the named entities of HTML that the serializer writes.
std::string DecodeHtml(const std::string& text) {
    static const char* const latin1 =
        "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg macr deg plusmn sup2 sup3 "
        "acute micro para middot cedil sup1 ordm raquo frac14 frac12 frac34 iquest Agrave Aacute Acirc Atilde Auml "
        "Aring AElig Ccedil Egrave Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute Ocirc Otilde "
        "Ouml times Oslash Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute acirc atilde auml aring aelig "
        "ccedil egrave eacute ecirc euml igrave iacute icirc iuml eth ntilde ograve oacute ocirc otilde ouml divide "
        "oslash ugrave uacute ucirc uuml yacute thorn yuml";
    static const std::vector<std::pair<std::string, unsigned long>> others = {
        {"amp", '&'},      {"lt", '<'},       {"gt", '>'},      {"quot", '"'},      {"apos", '\''},
        {"ndash", 0x2013}, {"mdash", 0x2014}, {"Omega", 0x3A9}, {"hellip", 0x2026}, {"euro", 0x20AC}};
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text[i] == '&' ? text.find(';', i) : std::string::npos;
        if (end == std::string::npos) {
            out += text[i];
            continue;
        }
        const std::string name = text.substr(i + 1, end - i - 1);
        unsigned long code = 0;
        if (name.size() > 1 && name[0] == '#')
            code =
                name[1] == 'x' || name[1] == 'X' ? std::stoul(name.substr(2), nullptr, 16) : std::stoul(name.substr(1));
        for (const auto& [entity, value] : others)
            if (entity == name)
                code = value;
        std::istringstream names(latin1);
        std::string entity;
        for (unsigned long value = 0xA0; names >> entity; ++value)
            if (entity == name)
                code = value;
        EXPECT_NE(code, 0u) << "unknown entity &" << name << ";";
        AppendUtf8(out, code);
        i = end;
    }
    return out;
}

struct HtmlRow {
    std::string colour;
    Record cells;
};

// The rows of the page's row table, the title row apart: their colour and cell texts.
std::vector<HtmlRow> ParseHtmlRows(const std::string& page, Record* titles) {
    std::vector<HtmlRow> rows;
    const std::size_t table = page.find("<table class=\"rows\">");
    EXPECT_NE(table, std::string::npos);
    if (table == std::string::npos)
        return rows;
    const std::size_t end = page.find("</table>", table);
    for (std::size_t at = page.find("<tr", table); at < end; at = page.find("<tr", at + 1)) {
        const std::size_t close = page.find("</tr>", at);
        const std::string tr = page.substr(at, close - at);
        HtmlRow row;
        if (const std::size_t colour = tr.find("color:"); colour != std::string::npos && colour < tr.find('>'))
            row.colour = tr.substr(colour + 6, 7);
        const bool title = tr.find("<th") != std::string::npos;
        const std::string open = title ? "<th" : "<td", shut = title ? "</th>" : "</td>";
        for (std::size_t cell = tr.find(open); cell != std::string::npos; cell = tr.find(open, cell + 1)) {
            const std::size_t from = tr.find('>', cell) + 1;
            row.cells.push_back(DecodeHtml(tr.substr(from, tr.find(shut, from) - from)));
        }
        if (title && titles != nullptr)
            *titles = row.cells;
        else if (!title)
            rows.push_back(std::move(row));
    }
    return rows;
}

struct Family {
    std::string folder; // under the sheets' folder
    std::string stem;   // of the sheets' names
    Record titles;
    const char* palette; // colours by colour digit
};

const Family Snapshots{
    "snp/", "snp_to_", {"Line", "Event", "Description", "Name", "Value", "Unit"}, "#000000#00AA00#0000AA#AA0000"};
const Family Xpvt701{
    "xpvt/",
    "xpvt_to_",
    {"Line", "Event", "LogicalLink", "CANID[hex]", "Abs.Time[ms]", "Description", "Value", "RangeInfo"},
    "#0000FF#008000#000000#FF0000"};
const Family Xpvt702{
    "xpvt_7_02/",
    "xpvt_to_",
    {"Line", "Event", "LogicalLink", "Location", "ID", "Time", "Description", "Value", "Unit", "RangeInfo"},
    "#0000FF#008000#000000#FF0000"};

// The records after the line of column titles; what comes before is the session.
std::vector<Record> CsvRows(const std::vector<Record>& records, const Record& titles) {
    for (std::size_t i = 0; i < records.size(); ++i)
        if (records[i] == titles)
            return std::vector<Record>(records.begin() + static_cast<std::ptrdiff_t>(i) + 1, records.end());
    ADD_FAILURE() << "no line of column titles";
    return {};
}

void ExpectExportsEqualList(const TempDir& dir, const Family& family, const std::string& file) {
    SCOPED_TRACE(file);
    const std::vector<ListRow> expected = ListRows(dir, file);
    for (const auto& [sheet, separator] : {std::pair<std::string, char>{"csv/" + family.stem + "csv.xsl", ','},
                                           std::pair<std::string, char>{"csv/" + family.stem + "csv1.xsl", ';'}}) {
        const std::vector<Record> rows =
            CsvRows(ParseCsv(RunSheet(dir, family.folder + sheet, file), separator), family.titles);
        ASSERT_EQ(rows.size(), expected.size()) << sheet;
        for (std::size_t i = 0; i < rows.size(); ++i)
            ASSERT_EQ(rows[i], expected[i].cells) << sheet << " row " << i + 1;
    }
    Record titles;
    const std::vector<HtmlRow> html =
        ParseHtmlRows(RunSheet(dir, family.folder + "html/" + family.stem + "html.xsl", file), &titles);
    EXPECT_EQ(titles, family.titles);
    ASSERT_EQ(html.size(), expected.size());
    for (std::size_t i = 0; i < html.size(); ++i) {
        ASSERT_EQ(html[i].cells, expected[i].cells) << "html row " << i + 1;
        const std::size_t digit = static_cast<std::size_t>(expected[i].colour - '0');
        ASSERT_LT(digit, 4u);
        ASSERT_EQ(html[i].colour, std::string(family.palette + 7 * digit, 7)) << "html row " << i + 1;
    }
}

class ExportSheets : public ::testing::Test {
protected:
    void SetUp() override {
        if (!XalanInstalled())
            GTEST_SKIP() << "Xalan (Xalan-C) is not installed";
    }
    TempDir dir;
};

TEST_F(ExportSheets, SnapshotSamplesAndGeneratedListsMatchTheList) {
    for (const char* sample : {"snapshots_basic.snp", "snapshots_compact.snp", "snapshots_hostile.snp",
                               "snapshots_huge_deep.snp", "snapshots_foreign.snp"})
        ExpectExportsEqualList(dir, Snapshots, std::string(ZDT_SAMPLES_DIR) + "/" + sample);

    zdtgen::SnapshotOptions options;
    options.seed = 31;
    options.snapshots = 6;
    options.hostile = zdtgen::SnapshotHostile::InFileKinds();
    std::ostringstream xml;
    zdtgen::WriteSnapshot(xml, options);
    ExpectExportsEqualList(dir, Snapshots, dir.Write("generated.snp", xml.str()));
}

TEST_F(ExportSheets, Xpvt701SamplesAndGeneratedTracesMatchTheList) {
    for (const char* sample :
         {"xpvt_701_basic.xpvt", "xpvt_701_hostile.xpvt", "xpvt_702_point_schema.xpvt", "xpvt_foreign.xpvt"})
        ExpectExportsEqualList(dir, Xpvt701, std::string(ZDT_SAMPLES_DIR) + "/" + sample);

    for (const std::uint64_t seed : {41u, 42u}) {
        zdtgen::XpvtTraceOptions options;
        options.schema = zdtgen::XpvtSchema::V701;
        options.seed = seed;
        options.results = 25;
        options.parameterDepth = 4;
        options.hostile = zdtgen::XpvtHostile::InFileKinds();
        ExpectExportsEqualList(dir, Xpvt701, dir.Write("generated.xpvt", zdtgen::MakeXpvtTrace(options)));
    }
}

TEST_F(ExportSheets, Xpvt702SamplesAndGeneratedTracesMatchTheList) {
    for (const char* sample : {"xpvt_702_basic.xpvt", "xpvt_702_nested.xpvt"})
        ExpectExportsEqualList(dir, Xpvt702, std::string(ZDT_SAMPLES_DIR) + "/" + sample);

    for (const std::uint64_t seed : {51u, 52u}) {
        zdtgen::XpvtTraceOptions options;
        options.schema = zdtgen::XpvtSchema::V702;
        options.seed = seed;
        options.results = 20;
        options.parameterDepth = 4;
        options.hostile = zdtgen::XpvtHostile::InFileKinds();
        ExpectExportsEqualList(dir, Xpvt702, dir.Write("generated.xpvt", zdtgen::MakeXpvtTrace(options)));
    }
}

// Values that pile up until the next element that empties them, errors that wait for the
// next flush, variants right under Trace that keep adding to their value, parameters whose
// Value follows their children, radix conversions and long messages.
TEST_F(ExportSheets, Xpvt702CarriedValuesAndPendingErrorsMatchTheList) {
    const std::string file = dir.Write("rules.xpvt", R"(<?xml version="1.0" encoding="UTF-8"?>
<ProcessValueTrace><Description><Schema>7,02</Schema></Description><Trace>
<VariantSelected>pre</VariantSelected>
<FinishDiagComPrimitive><VariantDetected>a</VariantDetected><DiagComPrimitive ShortName="P" ID="1" ObjectType="T"/>
  <VariantDetected>b</VariantDetected></FinishDiagComPrimitive>
<VariantDetected>c</VariantDetected><Unknown><Result/></Unknown><VariantSelected>s</VariantSelected>
<VariantDetected>d&#9;e</VariantDetected>
<StopTrace DateTime="x"><Request/></StopTrace>
<VariantDetected>f</VariantDetected>
<StartDiagComPrimitive><ParentDiagComPrimitives><DiagComPrimitive ShortName="a&#x20AC;"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="N" ObjectType="O"/>
  <ParentDiagComPrimitives><DiagComPrimitive ShortName="&#xDC;bcd"/><DiagComPrimitive ShortName="E"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="M" ID="7"/></StartDiagComPrimitive>
<Result><LogicalLink ShortName="LL"/>
  <Error Code="E1"><CodeDescription>cd</CodeDescription><VendorCode>V</VendorCode></Error>
  <Request ShortName="RQ"><TimeStamp>5</TimeStamp><RequestMessage>0102030405060708090a0b0c0d0e0f10 11 1</RequestMessage>
    <Error Code="E2"/>
    <RequestParameter ShortName="A" Type="T1"><Unit>u</Unit><ValueRangeInfo Type="R"/>
      <Value Radix="16"><ValueAsString>255</ValueAsString></Value>
      <RequestParameter ShortName="B" Type="T2"><Value Radix="2"><ValueAsString>1</ValueAsString></Value><Error Code="E3"/></RequestParameter>
      <Value><ValueAsString>x&#10;y</ValueAsString></Value></RequestParameter>
    <RequestParameter ShortName="C"><Value Radix="16"><ValueAsString>-1</ValueAsString></Value>
      <Value Radix="6"><ValueAsString>zz</ValueAsString></Value></RequestParameter></Request>
  <Response ShortName="RS"><LocationAddress>0x1</LocationAddress>
    <ResponseMessage>ABCDEF0123456789abcdef0123456789AB</ResponseMessage>
    <ResponseParameter ShortName="P1">
      <ResponseParameter ShortName="P2"><Value><ValueAsString>v2</ValueAsString></Value>
        <Error Code="E4"><VendorCodeDescription>vd</VendorCodeDescription></Error></ResponseParameter>
      <Value Radix="16"><ValueAsString>zz</ValueAsString></Value>
      <Value Radix="16"><ValueAsString>99999999999</ValueAsString></Value>
      <ResponseParameter ShortName="P3"/><Value><ValueAsString>w</ValueAsString></Value></ResponseParameter></Response>
  <Response ShortName="R2"><Error Code="E5"/></Response><Error Code="E6"/></Result>
<Result><Request ShortName="Q"/><Response/></Result>
</Trace></ProcessValueTrace>
)");
    ExpectExportsEqualList(dir, Xpvt702, file);

    const std::vector<Record> rows =
        CsvRows(ParseCsv(RunSheet(dir, "xpvt_7_02/csv/xpvt_to_csv.xsl", file), ','), Xpvt702.titles);
    auto find = [&rows](const std::string& event, const std::string& value) {
        for (const Record& row : rows)
            if (row.at(1) == event && (value.empty() || row.at(3) == value || row.at(7) == value))
                return true;
        return false;
    };
    EXPECT_TRUE(find("VariantDetected", "abc"));
    EXPECT_TRUE(find("VariantSelected", "s"));
    EXPECT_TRUE(find("VariantDetected", "abcde"));
    EXPECT_TRUE(find("VariantDetected", "f"));
    // The cut of three bytes splits the euro sign of "a\u20AC-->\u00DCbcd-->E".
    EXPECT_TRUE(find("  DiagComPrimitive", "\xEF\xBF\xBD-->\xC3\x9C"
                                           "bcd-->E"));
    EXPECT_TRUE(find("    Parameter [T1]", "$FF"));
    EXPECT_TRUE(find("    Parameter []", "$FFFFFFFF"));
    EXPECT_TRUE(find("  Request[Message]", "11 01"));
    EXPECT_TRUE(find("  ", "AB"));
    EXPECT_FALSE(find("    Parameter []", "w"));
}

// The session information heads every export as the session dialog shows it.
TEST_F(ExportSheets, SessionInformationLeadsTheCsv) {
    const std::string snp =
        dir.Write("s.snp", "<SnapList Created='14:05:09,21.11.2023'><SnapShot ShortName='A'/></SnapList>");
    const std::vector<Record> snpRecords =
        ParseCsv(RunSheet(dir, "snp/csv/snp_to_csv.xsl", snp, {{"file-name", "s.snp"}}), ',');
    ASSERT_GE(snpRecords.size(), 4u);
    EXPECT_EQ(snpRecords[0], (Record{"File name:", "s.snp"}));
    EXPECT_EQ(snpRecords[1], (Record{"Date:", "21.11.2023"}));
    EXPECT_EQ(snpRecords[2], (Record{"Time:", "14:05:09"}));
    EXPECT_EQ(snpRecords[3], (Record{"Author:", "ZDT V7"}));

    const std::string xpvt = std::string(ZDT_SAMPLES_DIR) + "/xpvt_701_hostile.xpvt";
    const CliRun info = RunCliInHome(dir, {"info", xpvt});
    const std::vector<Record> records = ParseCsv(RunSheet(dir, "xpvt/csv/xpvt_to_csv1.xsl", xpvt), ';');
    std::string shown;
    for (std::size_t i = 0; i < records.size() && records[i] != Xpvt701.titles; ++i)
        shown += records[i].at(0) + " " + records[i].at(1) + "\n";
    EXPECT_EQ(shown + "Rows: " + std::to_string(ListRows(dir, xpvt).size()) + "\n", info.out);
}

// A document run in chunks: 'first' writes the head, 'middle' neither head nor tail, 'last'
// the tail; rows are numbered from first-line, and the outputs join into one page.
TEST_F(ExportSheets, ChunksJoinIntoOneDocument) {
    const std::string file = std::string(ZDT_SAMPLES_DIR) + "/xpvt_701_basic.xpvt";
    const std::vector<ListRow> expected = ListRows(dir, file);
    const std::string sheet = "xpvt/html/xpvt_to_html.xsl";
    const std::string first = RunSheet(dir, sheet, file, {{"chunk", "first"}});
    const std::string middle = RunSheet(dir, sheet, file, {{"chunk", "middle"}});
    const std::string last = RunSheet(dir, sheet, file, {{"chunk", "last"}});
    ASSERT_GT(middle.size(), 0u);
    EXPECT_TRUE(first.ends_with(middle));
    EXPECT_TRUE(last.starts_with(middle));
    EXPECT_EQ(RunSheet(dir, sheet, file), first + last.substr(middle.size()));

    const std::string joined =
        first + RunSheet(dir, sheet, file, {{"chunk", "middle"}, {"first-line", std::to_string(expected.size() + 1)}}) +
        RunSheet(dir, sheet, file, {{"chunk", "last"}, {"first-line", std::to_string(2 * expected.size() + 1)}});
    Record titles;
    const std::vector<HtmlRow> rows = ParseHtmlRows(joined, &titles);
    EXPECT_EQ(titles, Xpvt701.titles);
    ASSERT_EQ(rows.size(), 3 * expected.size());
    EXPECT_EQ(joined.find("<!DOCTYPE"), joined.rfind("<!DOCTYPE"));
    EXPECT_EQ(joined.find("</html>"), joined.size() - std::string("</html>\n").size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rows[i].cells[0], std::to_string(i + 1));
        EXPECT_EQ(rows[expected.size() + i].cells[0], std::to_string(expected.size() + i + 1));
        Record third = expected[i].cells;
        third[0] = std::to_string(2 * expected.size() + i + 1);
        EXPECT_EQ(rows[2 * expected.size() + i].cells, third);
    }

    const std::string csvMiddle =
        RunSheet(dir, "xpvt/csv/xpvt_to_csv.xsl", file, {{"chunk", "middle"}, {"first-line", "101"}});
    const std::vector<Record> records = ParseCsv(csvMiddle, ',');
    ASSERT_EQ(records.size(), expected.size());
    EXPECT_EQ(records.front().front(), "101");
    EXPECT_EQ(records.back().front(), std::to_string(100 + expected.size()));
}

// A snapshot split inside itself: the chunk that continues it writes no start row, the
// chunk it goes on from writes no stop row.
TEST_F(ExportSheets, SnapshotSplitInsideItself) {
    const std::string file = dir.Write(
        "c.snp", "<SnapList Created='t,d'><SnapShot ShortName='S'><VIT>v</VIT><VIT>w</VIT></SnapShot></SnapList>");
    const std::vector<Record> whole =
        CsvRows(ParseCsv(RunSheet(dir, "snp/csv/snp_to_csv.xsl", file), ','), Snapshots.titles);
    ASSERT_EQ(whole.size(), 4u);
    EXPECT_EQ(whole[0], (Record{"1", "Start SnapShot", "S [ t,d ]", "", "", ""}));
    const std::vector<Record> head = CsvRows(
        ParseCsv(RunSheet(dir, "snp/csv/snp_to_csv.xsl", file, {{"chunk", "first"}, {"continues", "yes"}}), ','),
        Snapshots.titles);
    ASSERT_EQ(head.size(), 3u);
    EXPECT_EQ(head[0], whole[0]);
    const std::vector<Record> tail =
        ParseCsv(RunSheet(dir, "snp/csv/snp_to_csv.xsl", file,
                          {{"chunk", "last"}, {"continued", "yes"}, {"file-first", "yes"}, {"first-line", "2"}}),
                 ',');
    ASSERT_EQ(tail.size(), 3u);
    EXPECT_EQ(tail[2], (Record{"4", "Stop SnapShot", "S [ t,d ]", "", "", ""}));
    const std::vector<Record> later =
        ParseCsv(RunSheet(dir, "snp/csv/snp_to_csv.xsl", file, {{"chunk", "middle"}, {"continued", "yes"}}), ',');
    EXPECT_EQ(later.back(), (Record{"3", "Stop SnapShot", "S", "", "", ""}));
}

} // namespace
