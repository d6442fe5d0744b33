#include "xmldoc/SaveAsName.h"

namespace zdtui {

std::string ProposedSaveAsName(const std::string& pathName) {
    const std::string::size_type dot = pathName.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return pathName;
    return pathName.substr(0, dot);
}

std::string SaveAsNameWithExtension(const std::string& name, int filterIndex) {
    if (filterIndex < 1 || filterIndex > SaveAsFilterCount)
        return name;
    const std::string suffix = std::string(".") + SaveAsFilters[filterIndex - 1].extension;
    const bool present = name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    return present ? name : name + suffix;
}

}  // namespace zdtui
