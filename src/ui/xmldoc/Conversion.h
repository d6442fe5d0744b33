#pragma once

#include <stdexcept>
#include <string>

namespace zdtui {

// How a view exports its document: each operation converts the trace at `inputPath`
// into `outputPath`.
class Conversion {
public:
    class Exception : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    virtual ~Conversion() = default;
    virtual void toHtml(const std::string& inputPath, const std::string& outputPath) = 0;
    virtual void toRtf(const std::string& inputPath, const std::string& outputPath) = 0;
    virtual void toPdf(const std::string& inputPath, const std::string& outputPath) = 0;
    virtual void toCsv(const std::string& inputPath, const std::string& outputPath) = 0;
};

} // namespace zdtui
