#pragma once

#include "common/UserMessage.h"

#include <vector>

class QWidget;

namespace zdtui {

// Keeps the boxes a core operation raises on a worker thread, to be shown afterwards on
// the thread of the windows, in the order they were raised.
class CollectedMessages final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { m_messages.push_back(message); }
    // Nobody can be asked while the work runs away from the windows: the answer is No.
    bool askYesNo(const zdt::UserMessage& question) override;

    // Shows every kept box through Boxes on `parent` and forgets them.
    void showAll(QWidget* parent);
    bool empty() const { return m_messages.empty(); }

private:
    std::vector<zdt::UserMessage> m_messages;
};

} // namespace zdtui
