#pragma once

#include "common/UserMessage.h"

#include <atomic>
#include <functional>
#include <vector>

namespace zdt {

// How a long operation ended.
enum class OperationStatus { Done, Cancelled, Failed };

// The cancel flag and the progress of one long operation. The operation's thread
// reports through onProgress and learns of a cancel from its answer; any other thread
// reads how far it is and asks it to stop.
class OperationControl final : public ProgressSink {
public:
    // Called on the operation's thread after each report; it must be cheap.
    using ReportListener = std::function<void()>;

    bool onProgress(unsigned long long done, unsigned long long total) override;

    void requestCancel() { m_cancelRequested.store(true, std::memory_order_relaxed); }
    bool isCancelRequested() const { return m_cancelRequested.load(std::memory_order_relaxed); }
    // Thousandths of the work done; 0 while the total is unknown.
    int permille() const;
    // Set before the operation starts, never while it runs.
    void setReportListener(ReportListener listener) { m_listener = std::move(listener); }

private:
    std::atomic<bool> m_cancelRequested{false};
    std::atomic<unsigned long long> m_done{0};
    std::atomic<unsigned long long> m_total{0};
    ReportListener m_listener;
};

// Keeps the boxes an operation raises, in order, to be shown once it ended. Nobody can
// be asked while the work runs away from the windows: a question is answered No.
class MessageList final : public MessageSink {
public:
    void showMessage(const UserMessage& message) override { m_messages.push_back(message); }
    bool askYesNo(const UserMessage& question) override;

    const std::vector<UserMessage>& messages() const { return m_messages; }
    std::vector<UserMessage> take() { return std::move(m_messages); }

private:
    std::vector<UserMessage> m_messages;
};

// What an operation ended with: its status and every box it raised, a failure's among them.
struct OperationOutcome {
    OperationStatus status = OperationStatus::Done;
    std::vector<UserMessage> messages;
};

// One piece of long work: runs once, on whichever thread runs it, reporting to
// `control` and putting its boxes into `messages`.
using OperationJob = std::function<OperationStatus(MessageSink& messages, OperationControl& control)>;

// Runs `job` to its end on the calling thread. An exception that escapes the job fails
// the operation with the exception's text as its message.
OperationOutcome RunOperation(const OperationJob& job, OperationControl& control);

// The status of a step that says only whether it succeeded: a step that failed after a
// cancel was asked for was cancelled.
OperationStatus StatusOf(bool succeeded, const OperationControl& control);

} // namespace zdt
