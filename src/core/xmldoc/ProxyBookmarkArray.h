#pragma once

#include "common/RowTypes.h"

#include <string>

namespace ZDTAnalyzer {

// How the bookmark list sees the bookmarks, so that it does not depend on a document.
// Indexes are positions in the array behind the proxy, from 0.
class ProxyBookmarkArray {
public:
    virtual ~ProxyBookmarkArray() = default;

    virtual int size() const = 0;
    virtual zdt::RowIndex row(int index) const = 0;
    virtual std::string name(int index) const = 0;
    virtual std::string description(int index) const = 0;
    virtual void setDescription(int index, std::string description) = 0;
};

} // namespace ZDTAnalyzer
