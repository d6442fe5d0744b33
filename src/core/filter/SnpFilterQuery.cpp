#include "filter/SnpFilterQuery.h"

#include <string_view>

namespace ZDTAnalyzer::Filter::SNP {

namespace {

std::string trimBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    const std::size_t last = text.find_last_not_of(blanks);
    return std::string(text.substr(first, last - first + 1));
}

std::string selectionClause(const std::vector<std::string>& names) {
    if (names.empty())
        return {};
    std::string clause = "where ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            clause += " or ";
        clause += "$w/@Name = \"" + names[i] + "\"";
    }
    return clause;
}

} // namespace

std::string buildServiceListQuery(const std::string& documentPath) {
    return "for $x in doc (\"" + documentPath + "\")//Service return  fn:concat(data($x/@Name), '#')";
}

std::set<std::string> splitServiceNames(const std::string& resultText) {
    std::set<std::string> names;
    std::size_t start = 0;
    for (std::size_t hash; (hash = resultText.find('#', start)) != std::string::npos; start = hash + 1)
        names.insert(trimBlanks(std::string_view(resultText).substr(start, hash - start)));
    std::string rest = trimBlanks(std::string_view(resultText).substr(start));
    if (!rest.empty())
        names.insert(std::move(rest));
    return names;
}

std::string buildSnapshotFilterQuery(const std::string& documentPath, const std::vector<std::string>& chosenNames) {
    const std::string w = selectionClause(chosenNames);
    std::string q = "for $x in doc (\"" + documentPath + "\")/SnapList return <SnapList Created=\"{ $x/@Created }\"> ";
    if (!w.empty()) {
        q += " { ";
        q += "\tfor $y in $x/SnapShot return  ";
        q += "\tlet $nSnp := ( for $z in $y/(LogicalLink|Service) ";
        q += "\t\treturn typeswitch ($z) ";
        q += "\t\t\tcase element (LogicalLink)  return let $c := (for $w in $z/Service " + w + "return $w ) ";
        q += "\t\t\t\treturn if (fn:count($c) > 0) then <LogicalLink Name=\"{$z/@Name}\"> {$c} </LogicalLink> else () ";
        q += "\t\t\tcase element (Service) return for $w in $z " + w + " return $w ";
        q += "\t\t\tdefault return () )";
        q += "\treturn ";
        q += "\t\tif (fn:count($nSnp) > 0) ";
        q += "\t\t\tthen <SnapShot ShortName=\"{$y/@ShortName}\" LongName=\"{$y/@LongName}\" "
             "Created=\"{$y/@Created}\"> {$nSnp} </SnapShot>";
        q += "\t\telse () ";
        q += " } ";
    }
    q += "</SnapList>";
    return q;
}

} // namespace ZDTAnalyzer::Filter::SNP
