#pragma once

#include "xpvt/XpvtFindCriteria.h"

#include <string>
#include <utility>
#include <vector>

// The criteria of `zdt-cli find FILE.xpvt name=value ...`. A 7.01 file takes the fields
// of its record by name ("searchRequests=1"); a 7.02 file takes "Section.field=value",
// and a section named in any pair counts as the page whose "Find" was pressed unless the
// pairs set its findPressed themselves. Bad names and values throw UsageError.
class XpvtFindArguments {
public:
    explicit XpvtFindArguments(const std::vector<std::string>& pairs);

    // The schema is known only once the file is read: names of the other schema are a
    // usage error then.
    void requireSchema(bool is702) const;

    void apply(ZDTAnalyzer::XpvtFindCriteria701& criteria) const;
    void apply(ZDTAnalyzer::XpvtFindCriteria702& criteria) const;

private:
    std::vector<std::pair<std::string, std::string>> m_pairs;
    bool m_names701 = false;
    bool m_names702 = false;
};
