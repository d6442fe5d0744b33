#pragma once

#include "common/UserMessage.h"

#include <cstdio>

// Boxes become lines on standard error; a question is answered No.
class StderrMessages final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override {
        std::fprintf(stderr, "%s\n", message.text.c_str());
        ++m_shown;
    }
    bool askYesNo(const zdt::UserMessage& question) override {
        std::fprintf(stderr, "%s\n", question.text.c_str());
        return false;
    }
    int Shown() const { return m_shown; }

private:
    int m_shown = 0;
};
