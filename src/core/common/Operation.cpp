#include "common/Operation.h"

#include <algorithm>
#include <exception>

namespace zdt {

bool OperationControl::onProgress(unsigned long long done, unsigned long long total) {
    m_done.store(done, std::memory_order_relaxed);
    m_total.store(total, std::memory_order_relaxed);
    if (m_listener)
        m_listener();
    return !isCancelRequested();
}

int OperationControl::permille() const {
    const unsigned long long total = m_total.load(std::memory_order_relaxed);
    if (total == 0)
        return 0;
    const unsigned long long done = std::min(m_done.load(std::memory_order_relaxed), total);
    // In floating point, so that no file size overflows the product.
    return static_cast<int>(static_cast<long double>(done) * 1000.0L / static_cast<long double>(total));
}

bool MessageList::askYesNo(const UserMessage& /*question*/) {
    return false;
}

OperationOutcome RunOperation(const OperationJob& job, OperationControl& control) {
    MessageList messages;
    OperationOutcome outcome;
    try {
        outcome.status = job(messages, control);
    } catch (const std::exception& error) {
        messages.showMessage(UserMessage{"", error.what(), MessageIcon::Error});
        outcome.status = OperationStatus::Failed;
    } catch (...) {
        messages.showMessage(UserMessage{"", "The operation failed.", MessageIcon::Error});
        outcome.status = OperationStatus::Failed;
    }
    outcome.messages = messages.take();
    return outcome;
}

OperationStatus StatusOf(bool succeeded, const OperationControl& control) {
    if (succeeded)
        return OperationStatus::Done;
    return control.isCancelRequested() ? OperationStatus::Cancelled : OperationStatus::Failed;
}

} // namespace zdt
