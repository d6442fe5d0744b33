#pragma once

#include "common/UserMessage.h"

#include <string>
#include <vector>

// Keeps every box and question; questions get the answer set in `answerYes`.
class RecordingMessages final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { shown.push_back(message); }
    bool askYesNo(const zdt::UserMessage& question) override {
        asked.push_back(question);
        return answerYes;
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& message : shown)
            texts.push_back(message.text);
        return texts;
    }

    std::vector<zdt::UserMessage> shown;
    std::vector<zdt::UserMessage> asked;
    bool answerYes = false;
};
