#pragma once

#include <string>

namespace zdt {

enum class MessageIcon { Error, Warning, Information, Question };

// A message box as the user sees it: title (empty means the application's title), text and icon.
struct UserMessage {
    std::string title;
    std::string text;
    MessageIcon icon = MessageIcon::Error;
};

// Where core operations put the boxes they raise. The UI shows them; the CLI prints them.
class MessageSink {
public:
    virtual ~MessageSink() = default;
    virtual void showMessage(const UserMessage& message) = 0;
    // A Yes/No question; true means Yes.
    virtual bool askYesNo(const UserMessage& question) = 0;
};

// Reports how far a long operation is and lets the user stop it.
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    // Returns false when the user asked to cancel.
    virtual bool onProgress(unsigned long long done, unsigned long long total) = 0;
};

} // namespace zdt
