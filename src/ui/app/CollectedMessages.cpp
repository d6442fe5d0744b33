#include "app/CollectedMessages.h"

#include "app/Boxes.h"

namespace zdtui {

bool CollectedMessages::askYesNo(const zdt::UserMessage&) {
    return false;
}

void CollectedMessages::showAll(QWidget* parent) {
    BoxMessageSink boxes(parent);
    std::vector<zdt::UserMessage> messages;
    messages.swap(m_messages);
    for (const zdt::UserMessage& message : messages)
        boxes.showMessage(message);
}

} // namespace zdtui
