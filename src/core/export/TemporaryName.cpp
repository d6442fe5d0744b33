#include "export/TemporaryName.h"

#include "common/TemporaryNumber.h"

#include <ctime>

namespace ZDTAnalyzer {

std::string temporaryName(const std::string& directory, const std::string& extension) {
    const int number = zdt::TemporaryNumber();
    return directory + "temp" + std::to_string(static_cast<long>(std::time(nullptr))) + "_" + std::to_string(number) +
           extension;
}

} // namespace ZDTAnalyzer
