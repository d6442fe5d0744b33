#pragma once

#include <set>
#include <string>
#include <vector>

// The two queries of the snapshot filter: the list of the file's service names, and the
// reduced copy that keeps only the chosen services.
namespace ZDTAnalyzer::Filter::SNP {

// Every Service's Name, each followed by "#".
std::string buildServiceListQuery(const std::string& documentPath);

// The names of the list query's result: the texts before each "#", blanks trimmed on both
// sides, sorted by their bytes and without repeats. A rest after the last "#" counts only
// when it is not blank.
std::set<std::string> splitServiceNames(const std::string& resultText);

// The SnapList with its Created attribute holding, for each snapshot with something left,
// its chosen services and the links that hold one. With no name chosen the list is empty.
// Names are not escaped.
std::string buildSnapshotFilterQuery(const std::string& documentPath, const std::vector<std::string>& chosenNames);

} // namespace ZDTAnalyzer::Filter::SNP
