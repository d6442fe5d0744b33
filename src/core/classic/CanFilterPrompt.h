#pragma once

#include <string>

// What the document asks of the CAN filter dialog. The desktop shows the real dialog;
// the command line answers from its options.
class CanFilterPrompt {
public:
    struct Request {
        bool activate = false;
        std::string name;
        bool automatic = false;
    };
    struct Answer {
        bool ok = false;
        bool activate = false;
        bool changed = false;
        std::string name;
    };

    virtual ~CanFilterPrompt() = default;
    virtual Answer Run(const Request& request) = 0;
    // Full path of the ".flt" file of that name.
    virtual std::string FilterPath(const std::string& name) = 0;
};
