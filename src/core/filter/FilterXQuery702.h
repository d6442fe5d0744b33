#pragma once

#include "filter/FilterCondition702.h"

#include <string>

namespace ZDTAnalyzer::Filter::XPVT_7_02 {

// How the tests of a parent primitive's name (row 7) and of a response's name and message
// (rows 16 and 17) are written.
enum class MultiValueTests {
    // contains(path, text), as the filter is shown: the engine rejects it with XPTY0004 on
    // a primitive with two parents or a result with two responses, which are common.
    AsWritten,
    // "any of the values contains the text": the same answer where the path yields one
    // value or none, and an answer instead of an error where it yields several. Runs use it.
    AnyValue,
};

// The query of a 7.02 filter, line by line: all 20 `let` lines (flags bare, texts quoted
// and not escaped), the document's path as $doc_, then the template with a test per kind
// of trace event, holding a fragment for each enabled row.
// `skippedItem` is what an event that fails its test becomes: the empty string as the
// filter is written; a run over pieces of the document puts a marker there, so that the
// blanks those strings leave between the kept events can be restored across pieces.
std::string buildFilterXQuery702(const std::string& documentPath, const FilterCondition702& record,
                                 MultiValueTests multiValueTests = MultiValueTests::AsWritten,
                                 const std::string& skippedItem = "\"\"");

} // namespace ZDTAnalyzer::Filter::XPVT_7_02
