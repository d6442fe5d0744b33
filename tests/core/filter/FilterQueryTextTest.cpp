// The query texts of the three filters, byte for byte where the text is fixed.
#include "filter/FilterXQuery701.h"
#include "filter/FilterXQuery702.h"
#include "filter/SnpFilterQuery.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer::Filter;

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST(FilterXQuery701, CommentLetLinesAndPathInKeyOrder) {
    const XPVT_7_01::FilterConditionMap conditions{
        {"b", "1"}, {"a", "text"}, {"C", ""}, {"ParameterNameRequest", "A"}, {"\xFF", "\xFF"}};
    const std::string query = XPVT_7_01::buildFilterXQuery701("/x y/t #1.xpvt", conditions);
    const std::string head = "(:\nC=\nParameterNameRequest=A\na=text\nb=1\n\xFF=\xFF\n:)\n\n\n"
                             "let $C:=\"\"\n"
                             "let $ParameterNameRequest:=A\n"
                             "let $a:=\"text\"\n"
                             "let $b:=1\n"
                             "let $\xFF:=\xFF\n"
                             "let $doc_name:=\"/x y/t #1.xpvt\"\n"
                             "\n\n\n";
    ASSERT_EQ(query.substr(0, head.size()), head);
    EXPECT_EQ(query.substr(head.size()), XPVT_7_01::filterTemplate701());
}

TEST(FilterXQuery701, QuotesAreNotEscapedAndTwoCharactersAreQuoted) {
    const std::string query = XPVT_7_01::buildFilterXQuery701("p", {{"k", "a\"b"}, {"t", "ab"}});
    EXPECT_NE(query.find("let $k:=\"a\"b\"\n"), std::string::npos);
    EXPECT_NE(query.find("let $t:=\"ab\"\n"), std::string::npos);
}

TEST(FilterXQuery701, TemplateKeepsItsSpellings) {
    const std::string& t = XPVT_7_01::filterTemplate701();
    EXPECT_EQ(t.rfind("for $x in doc ($doc_name)/ProcessValueTrace/Trace\n", 0), 0u);
    EXPECT_NE(t.find("$ AfterComPrimitiveName=1"), std::string::npos);
    EXPECT_NE(t.find("$ AfterComPrimitiveId=1"), std::string::npos);
    EXPECT_EQ(t.find("$AfterComPrimitiveName"), std::string::npos);
    EXPECT_EQ(t.find("$AfterComPrimitiveId"), std::string::npos);
    // Only the complete-result test of a response parameter name is misspelt.
    EXPECT_EQ(occurrences(t, "ZdtReponseParameter"), 1u);
    EXPECT_NE(t.find("some $xx in $y/ZdtResponse/ZdtReponseParameter satisfies ( contains($xx/ShortName, "
                     "string($ParameterNameResponse)) )"),
              std::string::npos);
    EXPECT_NE(t.find("(: start include complete conditions in ZdtResult :)"), std::string::npos);
    EXPECT_NE(t.find("(: end include complete conditions in ZdtResult :)"), std::string::npos);
    // Every condition of a new filter is referred to, so each let line is needed.
    for (const auto& [key, value] : XPVT_7_01::defaultFilterConditionMap())
        EXPECT_TRUE(t.find("$" + key) != std::string::npos || t.find("$ " + key) != std::string::npos) << key;
}

TEST(FilterXQuery702, NothingEnabledGivesBareGroupTests) {
    const std::string q = XPVT_7_02::buildFilterXQuery702("/d.xpvt", {});
    const std::string lets =
        "let $IOCLL := 0\nlet $OCLLLLS := \"\"\nlet $OCLLAKOLS := \"\"\n"
        "let $ISFDCP := 0\nlet $SFDCPLLS := \"\"\nlet $SFDCPAKOLS := \"\"\nlet $SFDCPPDCPS := \"\"\n"
        "let $IR := 0\nlet $RDCPSNS := \"\"\nlet $RDCPIDS := \"\"\nlet $RRQSNS := \"\"\n"
        "let $RRQMSS := \"\"\nlet $RRQPAF := 0\nlet $RRQPASNS := \"\"\nlet $RRQPAVAS := \"\"\n"
        "let $RRPSNS := \"\"\nlet $RRPMSS := \"\"\nlet $RRPPAF := 0\nlet $RRPPASNS := \"\"\n"
        "let $RRPPAVAS := \"\"\nlet $doc_ := \"/d.xpvt\"\n"
        "for $x in doc($doc_)/ProcessValueTrace\nreturn\n<ProcessValueTrace>\n{\n"
        "  for $y in $x/*\n  return\n    typeswitch($y)\n    case element(Trace)\n    return\n"
        "<Trace>\n{\n  for $z in $y/*\n  return\n    typeswitch($z)\n";
    ASSERT_EQ(q.substr(0, lets.size()), lets);
    const std::string linkTest = " if   (         ( $IOCLL = 1 )   ) then $z else \"\"\n";
    EXPECT_NE(q.find("    case element(OpenLogicalLink)\n    return\n" + linkTest +
                     "    case element(CloseLogicalLink)\n    return\n" + linkTest),
              std::string::npos);
    const std::string result =
        "    case element(Result)\n    return\n"
        " if   (         ( $IR = 1 )     and ( $RRQPAF = 0 or                          ( some $t in "
        "$z/Request//* satisfies\n(\n     ( typeswitch($t) case element(RequestParameter) return fn:true() default "
        "return fn:false() ) )\n                         )         )\n     and ( $RRPPAF = 0 or                      "
        "    ( some $t in $z/Response//* satisfies\n(\n      ( typeswitch($t) case element(ResponseParameter) return "
        "fn:true() default return fn:false() ) )\n                         )         )\n   ) then $z else \"\"\n";
    EXPECT_NE(q.find(result), std::string::npos);
    const std::string tail = "    default\nreturn $z\n}\n</Trace>    default\n    return $y\n}\n</ProcessValueTrace>\n";
    EXPECT_EQ(q.substr(q.size() - tail.size()), tail);
}

TEST(FilterXQuery702, FragmentsNegationAndTheRequestValueQuirk) {
    XPVT_7_02::FilterCondition702 r;
    r.includeOpenCloseLogicalLinks = true;
    r.logicalLink = {true, true, "LL"};
    r.accessKeyOfLocation = {false, true, "AK"};
    r.requestParameterValue = {false, true, "5"};
    r.responseParameterValue = {false, true, "6"};
    const std::string q = XPVT_7_02::buildFilterXQuery702("d", r);
    EXPECT_NE(q.find("let $IOCLL := 1\nlet $OCLLLLS := \"LL\"\n"), std::string::npos);
    EXPECT_NE(q.find(" if   (         ( $IOCLL = 1 ) and (not (contains($z/LogicalLink/@ShortName, string "
                     "($OCLLLLS)))) and (contains($z/AccessKeyOfLocation, string ($OCLLAKOLS)))   ) then $z else "
                     "\"\"\n"),
              std::string::npos);
    // Enabled means negated for the request value, whatever its "Not" says; not so for the response.
    EXPECT_NE(q.find(" and (not (contains($t/Value/ValueAsString, string ($RRQPAVAS))))"), std::string::npos);
    EXPECT_NE(q.find(" and (contains($t/Value/ValueAsString, string ($RRPPAVAS)))"), std::string::npos);
    r.requestParameterValue.negate = true;
    EXPECT_EQ(XPVT_7_02::buildFilterXQuery702("d", r), q);
}

TEST(FilterXQuery702, AnyValueRewritesOnlyTheThreeMultiValueRows) {
    XPVT_7_02::FilterCondition702 r;
    r.parentDiagComPrimitive = {false, true, "P"};
    r.responseShortName = {true, true, "S"};
    r.responseMessage = {false, true, "M"};
    r.requestShortName = {false, true, "Q"};
    const std::string written = XPVT_7_02::buildFilterXQuery702("d", r);
    const std::string any = XPVT_7_02::buildFilterXQuery702("d", r, XPVT_7_02::MultiValueTests::AnyValue);
    EXPECT_NE(written.find("contains($z/ParentDiagComPrimitives/DiagComPrimitive/@ShortName, string ($SFDCPPDCPS))"),
              std::string::npos);
    EXPECT_EQ(any.find("contains($z/ParentDiagComPrimitives"), std::string::npos);
    EXPECT_EQ(any.find("contains($z/Response/"), std::string::npos);
    EXPECT_NE(any.find(" and (not ((some $any in (if (exists($z/Response/@ShortName)) then $z/Response/@ShortName "
                       "else \"\") satisfies contains($any, string ($RRPSNS)))))"),
              std::string::npos);
    EXPECT_NE(any.find("contains($z/Request/@ShortName, string ($RRQSNS))"), std::string::npos);
    // Disabled rows stay empty either way.
    EXPECT_EQ(XPVT_7_02::buildFilterXQuery702("d", {}),
              XPVT_7_02::buildFilterXQuery702("d", {}, XPVT_7_02::MultiValueTests::AnyValue));
}

TEST(SnpFilterQuery, ListQueryAndSplitting) {
    EXPECT_EQ(SNP::buildServiceListQuery("/a b.snp"),
              "for $x in doc (\"/a b.snp\")//Service return  fn:concat(data($x/@Name), '#')");
    EXPECT_EQ(SNP::splitServiceNames(""), std::set<std::string>{});
    EXPECT_EQ(SNP::splitServiceNames("B# A# B#  C d #"), (std::set<std::string>{"A", "B", "C d"}));
    EXPECT_EQ(SNP::splitServiceNames("#x"), (std::set<std::string>{"", "x"}));
    EXPECT_EQ(SNP::splitServiceNames("a# \n"), std::set<std::string>{"a"});
}

TEST(SnpFilterQuery, FilterQueryWithAndWithoutNames) {
    EXPECT_EQ(SNP::buildSnapshotFilterQuery("p.snp", {}),
              "for $x in doc (\"p.snp\")/SnapList return <SnapList Created=\"{ $x/@Created }\"> </SnapList>");
    const std::string q = SNP::buildSnapshotFilterQuery("p.snp", {"A", "B"});
    const std::string w = "where $w/@Name = \"A\" or $w/@Name = \"B\"";
    EXPECT_EQ(q, "for $x in doc (\"p.snp\")/SnapList return <SnapList Created=\"{ $x/@Created }\">  { "
                 "\tfor $y in $x/SnapShot return  \tlet $nSnp := ( for $z in $y/(LogicalLink|Service) "
                 "\t\treturn typeswitch ($z) \t\t\tcase element (LogicalLink)  return let $c := (for $w in "
                 "$z/Service " +
                     w +
                     "return $w ) \t\t\t\treturn if (fn:count($c) > 0) then <LogicalLink Name=\"{$z/@Name}\"> {$c} "
                     "</LogicalLink> else () \t\t\tcase element (Service) return for $w in $z " +
                     w +
                     " return $w \t\t\tdefault return () )\treturn \t\tif (fn:count($nSnp) > 0) \t\t\tthen "
                     "<SnapShot ShortName=\"{$y/@ShortName}\" LongName=\"{$y/@LongName}\" Created=\"{$y/@Created}\"> "
                     "{$nSnp} </SnapShot>\t\telse ()  } </SnapList>");
}

} // namespace
