#pragma once

#include <stdexcept>
#include <string>

namespace zdtui {

// How a view prints its document, from the trace file at `pathName`.
class PrintPrintPreview {
public:
    class Exception : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    virtual ~PrintPrintPreview() = default;
    virtual void print(const std::string& pathName) = 0;
    virtual void printPreview(const std::string& pathName) = 0;
};

} // namespace zdtui
