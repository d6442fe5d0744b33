#include "export/FormatterPipe.h"

#include "common/Operation.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace ZDTAnalyzer {
namespace {

// Keeps SIGPIPE from ending the program while this thread writes into a pipe whose reader
// may be gone: the write then fails with EPIPE, and a signal it raised is taken back.
class PipeSignalBlock {
public:
    PipeSignalBlock() {
        sigemptyset(&m_pipeSignal);
        sigaddset(&m_pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_pipeSignal, &m_previous);
    }
    ~PipeSignalBlock() {
        const timespec noWait{0, 0};
        while (sigtimedwait(&m_pipeSignal, nullptr, &noWait) == SIGPIPE) {
        }
        pthread_sigmask(SIG_SETMASK, &m_previous, nullptr);
    }
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;

private:
    sigset_t m_pipeSignal{};
    sigset_t m_previous{};
};

bool writeAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(descriptor, data, size);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

FormatterPipe::FormatterPipe(std::string pipePath, std::vector<std::string> arguments,
                             const zdt::OperationControl& control)
    : m_pipePath(std::move(pipePath)), m_control(control) {
    m_pipeMade = ::mkfifo(m_pipePath.c_str(), 0600) == 0;
    if (!m_pipeMade) {
        m_run.outcome = ProcessOutcome::NotStarted;
        m_run.startError = errno;
        m_formatterEnded = true;
        return;
    }
    m_formatter = std::thread([this, arguments = std::move(arguments)] {
        m_run = runProcess(arguments, &m_control);
        m_formatterEnded = true;
    });
}

FormatterPipe::~FormatterPipe() {
    finish();
    if (m_pipeMade)
        std::remove(m_pipePath.c_str());
}

// A pipe opened for writing before its reader would block for good if the formatter never
// started, so the opening is tried until the formatter is there, has ended, or is cancelled.
bool FormatterPipe::openPipe() {
    while (m_pipe < 0) {
        if (m_formatterEnded || m_control.isCancelRequested())
            return false;
        m_pipe = ::open(m_pipePath.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (m_pipe < 0) {
            if (errno != ENXIO && errno != EINTR)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    // From here a full pipe makes the copy wait for the formatter, not spin.
    const int flags = ::fcntl(m_pipe, F_GETFL);
    return flags >= 0 && ::fcntl(m_pipe, F_SETFL, flags & ~O_NONBLOCK) == 0;
}

bool FormatterPipe::waitForPreviousPart() {
    if (!m_copy.valid())
        return true;
    return m_copy.get();
}

bool FormatterPipe::copyIntoPipe(const std::string& partPath) const {
    const PipeSignalBlock signalBlock;
    std::FILE* part = std::fopen(partPath.c_str(), "rb");
    if (part == nullptr)
        return false;
    std::vector<char> buffer(std::size_t{1} << 20);
    bool copied = true;
    for (std::size_t read; copied && (read = std::fread(buffer.data(), 1, buffer.size(), part)) > 0;)
        copied = writeAll(m_pipe, buffer.data(), read);
    copied = copied && !std::ferror(part);
    std::fclose(part);
    return copied;
}

bool FormatterPipe::append(std::string partPath) {
    if (!waitForPreviousPart() || !openPipe()) {
        std::remove(partPath.c_str());
        return false;
    }
    m_copy = std::async(std::launch::async, [this, partPath = std::move(partPath)] {
        const bool copied = copyIntoPipe(partPath);
        std::remove(partPath.c_str());
        return copied;
    });
    return true;
}

void FormatterPipe::closePipe() {
    if (m_pipe >= 0) {
        ::close(m_pipe);
        m_pipe = -1;
    }
}

ProcessRun FormatterPipe::finish() {
    if (m_copy.valid())
        m_copy.get();
    // A formatter still waiting for its input is given an empty one, so that it ends.
    if (m_pipe < 0)
        openPipe();
    closePipe();
    if (m_formatter.joinable())
        m_formatter.join();
    return m_run;
}

} // namespace ZDTAnalyzer
