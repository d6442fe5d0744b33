#include "common/ChildProcess.h"
#include "common/Operation.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

using zdt::ChildProcessCommand;
using zdt::ChildProcessResult;
using zdt::ChildStream;
using zdt::RunChildProcess;

ChildProcessCommand Shell(const std::string& script, std::vector<std::string> extra = {}) {
    ChildProcessCommand command;
    command.arguments = {"sh", "-c", script, "sh"};
    command.arguments.insert(command.arguments.end(), extra.begin(), extra.end());
    command.standardOutput = ChildStream::capture();
    command.standardError = ChildStream::capture();
    return command;
}

std::string ReadWhole(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class ScratchDir : public ::testing::Test {
protected:
    void SetUp() override {
        m_dir =
            std::filesystem::temp_directory_path() / ("zdt-child-" + std::to_string(::getpid()) + "-" +
                                                      ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(m_dir);
    }
    void TearDown() override { std::filesystem::remove_all(m_dir); }
    std::filesystem::path m_dir;
};

// A process that ended but waits for a parent that will never reap it (a sandbox's
// first process may not) counts as gone.
bool ProcessExists(pid_t pid) {
    if (::kill(pid, 0) != 0 && errno == ESRCH)
        return false;
    const std::string stat = ReadWhole("/proc/" + std::to_string(pid) + "/stat");
    const std::size_t state = stat.rfind(") ");
    return state == std::string::npos || stat.size() <= state + 2 || stat[state + 2] != 'Z';
}

pid_t WaitForPidFile(const std::filesystem::path& file) {
    for (int attempt = 0; attempt < 200; ++attempt) {
        const std::string text = ReadWhole(file);
        if (!text.empty() && text.back() == '\n')
            return static_cast<pid_t>(std::stol(text));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return -1;
}

TEST(ChildProcess, ReportsExitCodeAndBothStreams) {
    const ChildProcessResult result = RunChildProcess(Shell("echo out; echo err >&2; exit 3"), nullptr);
    EXPECT_EQ(result.end, ChildProcessResult::End::Exited);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_FALSE(result.succeeded());
    EXPECT_EQ(result.standardOutput, "out\n");
    EXPECT_EQ(result.standardError, "err\n");

    EXPECT_TRUE(RunChildProcess(Shell("true"), nullptr).succeeded());
}

TEST(ChildProcess, ArgumentsReachTheProgramByteForByte) {
    const std::vector<std::string> awkward = {
        "two words", "quote\"s and 'apostrophes'", "$HOME `x` ;|&", "Grüße", "#50%41", ""};
    const ChildProcessResult result =
        RunChildProcess(Shell("for a in \"$@\"; do printf '[%s]' \"$a\"; done", awkward), nullptr);
    ASSERT_TRUE(result.succeeded()) << result.standardError;
    EXPECT_EQ(result.standardOutput, "[two words][quote\"s and 'apostrophes'][$HOME `x` ;|&][Grüße][#50%41][]");
}

TEST(ChildProcess, StreamsCapturedInFullWhateverTheirSize) {
    // More than a pipe holds on both streams at once: the wait must drain them as it goes.
    const ChildProcessResult result = RunChildProcess(
        Shell("head -c 3000000 /dev/zero | tr '\\0' a; head -c 2000000 /dev/zero | tr '\\0' b >&2"), nullptr);
    ASSERT_TRUE(result.succeeded());
    EXPECT_EQ(result.standardOutput, std::string(3000000, 'a'));
    EXPECT_EQ(result.standardError, std::string(2000000, 'b'));
}

TEST_F(ScratchDir, StreamsGoToFilesOrNowhere) {
    ChildProcessCommand command = Shell("echo kept; echo dropped >&2; cat");
    command.standardOutput = ChildStream::toFile((m_dir / "out file.txt").string());
    command.standardError = ChildStream::discard();
    const ChildProcessResult result = RunChildProcess(command, nullptr);
    ASSERT_TRUE(result.succeeded());
    // The child's input is empty, so `cat` ends at once.
    EXPECT_EQ(ReadWhole(m_dir / "out file.txt"), "kept\n");
    EXPECT_TRUE(result.standardOutput.empty());
    EXPECT_TRUE(result.standardError.empty());
}

TEST(ChildProcess, EnvironmentChangesReachTheChild) {
    ChildProcessCommand command = Shell("printf '%s|%s' \"$ZDT_CHILD_TEST\" \"$PATH\"");
    command.environment = {{"ZDT_CHILD_TEST", "a b=c"}};
    const ChildProcessResult result = RunChildProcess(command, nullptr);
    ASSERT_TRUE(result.succeeded());
    EXPECT_EQ(result.standardOutput, std::string("a b=c|") + std::getenv("PATH"));
}

TEST(ChildProcess, MissingProgramDoesNotStart) {
    ChildProcessCommand command;
    command.arguments = {"zdt-no-such-program-anywhere"};
    const ChildProcessResult result = RunChildProcess(command, nullptr);
    EXPECT_EQ(result.end, ChildProcessResult::End::NotStarted);
    EXPECT_EQ(result.startError, ENOENT);
    EXPECT_TRUE(zdt::FindProgramOnPath("zdt-no-such-program-anywhere").empty());
    EXPECT_FALSE(zdt::FindProgramOnPath("sh").empty());
}

TEST_F(ScratchDir, CancelEndsTheWholeGroupAndReturnsPromptly) {
    // A script that leaves a tool running, as the conversion scripts do.
    const auto pidFile = m_dir / "tool.pid";
    zdt::OperationControl control;
    std::thread canceller([&] {
        WaitForPidFile(pidFile);
        control.requestCancel();
    });
    const auto started = std::chrono::steady_clock::now();
    const ChildProcessResult result =
        RunChildProcess(Shell("sleep 60 & echo $! > \"$1\"; wait", {pidFile.string()}), &control);
    canceller.join();
    EXPECT_EQ(result.end, ChildProcessResult::End::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
    const pid_t tool = WaitForPidFile(pidFile);
    ASSERT_GT(tool, 0);
    for (int attempt = 0; attempt < 100 && ProcessExists(tool); ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(ProcessExists(tool));
}

TEST_F(ScratchDir, CancelOvercomesAChildThatIgnoresTermination) {
    const auto readyFile = m_dir / "ready";
    zdt::OperationControl control;
    std::thread canceller([&] {
        WaitForPidFile(readyFile);
        control.requestCancel();
    });
    const ChildProcessResult result = RunChildProcess(
        Shell("trap '' TERM; echo $$ > \"$1\"; while :; do sleep 1; done", {readyFile.string()}), &control);
    canceller.join();
    EXPECT_EQ(result.end, ChildProcessResult::End::Cancelled);
    EXPECT_FALSE(ProcessExists(WaitForPidFile(readyFile)));
}

TEST_F(ScratchDir, ProgramExitEndsRunningChildren) {
    const auto readyFile = m_dir / "ready";
    ChildProcessResult result;
    std::thread runner(
        [&] { result = RunChildProcess(Shell("echo $$ > \"$1\"; sleep 60", {readyFile.string()}), nullptr); });
    ASSERT_GT(WaitForPidFile(readyFile), 0);
    zdt::KillRunningChildProcesses();
    runner.join();
    EXPECT_EQ(result.end, ChildProcessResult::End::Signalled);
    EXPECT_EQ(result.signal, SIGKILL);
}

TEST(Operation, ExceptionsFailTheOperationWithTheirText) {
    zdt::OperationControl control;
    const zdt::OperationOutcome thrown = zdt::RunOperation(
        [](zdt::MessageSink& messages, zdt::OperationControl&) -> zdt::OperationStatus {
            messages.showMessage({"Title", "first box", zdt::MessageIcon::Warning});
            throw std::runtime_error("disk full");
        },
        control);
    EXPECT_EQ(thrown.status, zdt::OperationStatus::Failed);
    ASSERT_EQ(thrown.messages.size(), 2U);
    EXPECT_EQ(thrown.messages[0].text, "first box");
    EXPECT_EQ(thrown.messages[1].text, "disk full");

    // Questions asked away from the windows are answered No.
    const zdt::OperationOutcome asked = zdt::RunOperation(
        [](zdt::MessageSink& messages, zdt::OperationControl&) {
            return messages.askYesNo({"", "Go on?", zdt::MessageIcon::Question}) ? zdt::OperationStatus::Done
                                                                                 : zdt::OperationStatus::Cancelled;
        },
        control);
    EXPECT_EQ(asked.status, zdt::OperationStatus::Cancelled);
}

TEST(Operation, ProgressAndCancelMeetInTheControl) {
    zdt::OperationControl control;
    int reports = 0;
    control.setReportListener([&] { ++reports; });
    EXPECT_EQ(control.permille(), 0);
    EXPECT_TRUE(control.onProgress(1, 3));
    EXPECT_EQ(control.permille(), 333);
    // Totals beyond 64-bit products must not overflow.
    EXPECT_TRUE(control.onProgress(~0ULL / 2, ~0ULL));
    EXPECT_EQ(control.permille(), 499);
    EXPECT_TRUE(control.onProgress(5, 3));
    EXPECT_EQ(control.permille(), 1000);
    control.requestCancel();
    EXPECT_FALSE(control.onProgress(1, 3));
    EXPECT_EQ(reports, 4);

    EXPECT_EQ(zdt::StatusOf(true, control), zdt::OperationStatus::Done);
    EXPECT_EQ(zdt::StatusOf(false, control), zdt::OperationStatus::Cancelled);
    EXPECT_EQ(zdt::StatusOf(false, zdt::OperationControl{}), zdt::OperationStatus::Failed);
}

} // namespace
