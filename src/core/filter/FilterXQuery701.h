#pragma once

#include "filter/FilterConditionMap.h"

#include <string>

namespace ZDTAnalyzer::Filter::XPVT_7_01 {

// The query of a 7.01 filter: the conditions as a comment, one `let` line per entry
// (values of exactly one character stand bare, so flags read as numbers), the document's
// path as $doc_name, then the fixed template that keeps, drops and rebuilds the trace's
// events. Nothing is escaped: a quote in a text makes the query invalid.
std::string buildFilterXQuery701(const std::string& documentPath, const FilterConditionMap& conditions);

// The part after the `let` lines; the same for every filter.
const std::string& filterTemplate701();

} // namespace ZDTAnalyzer::Filter::XPVT_7_01
