// One long operation on its own thread: how it ends, how often it tells the windows of
// its progress, how a cancel and its owner's end wait for it, and the strip that shows it.
#include "app/BackgroundOperation.h"
#include "app/OperationStrip.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <stdexcept>

using namespace zdtui;

namespace {

constexpr int TimeoutMs = 60'000;

// A job that runs until it is asked to stop, then takes a while to unwind; the test sees
// each stage through the flags.
struct StoppableJob {
    std::atomic<bool> started{false};
    std::atomic<bool> unwound{false};
    std::atomic<bool> sawCancel{false};

    zdt::OperationJob job() {
        return [this](zdt::MessageSink&, zdt::OperationControl& control) {
            started = true;
            while (control.onProgress(1, 2))
                QThread::msleep(1);
            sawCancel = control.isCancelRequested();
            QThread::msleep(50);
            unwound = true;
            return zdt::OperationStatus::Cancelled;
        };
    }
};

bool WaitFor(const std::atomic<bool>& flag) {
    return QTest::qWaitFor([&] { return flag.load(); }, TimeoutMs);
}

} // namespace

Q_DECLARE_METATYPE(zdt::OperationStatus)

class BackgroundOperationTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<zdt::OperationStatus>(); }

    void finishesOnceWithTheJobsStatus_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("expected");
        QTest::addColumn<QString>("message");
        QTest::newRow("done") << 0 << int(zdt::OperationStatus::Done) << QString("kept");
        QTest::newRow("cancelled") << 1 << int(zdt::OperationStatus::Cancelled) << QString();
        QTest::newRow("failed") << 2 << int(zdt::OperationStatus::Failed) << QString("broken");
        QTest::newRow("exception") << 3 << int(zdt::OperationStatus::Failed) << QString("thrown text");
    }
    void finishesOnceWithTheJobsStatus() {
        QFETCH(int, kind);
        QFETCH(int, expected);
        QFETCH(QString, message);
        std::atomic<bool> ranOnOtherThread{false};
        QThread* testThread = QThread::currentThread();
        BackgroundOperation operation("work", [&, kind](zdt::MessageSink& messages, zdt::OperationControl& control) {
            ranOnOtherThread = QThread::currentThread() != testThread;
            switch (kind) {
            case 0:
                messages.showMessage({"", "kept", zdt::MessageIcon::Information});
                return zdt::OperationStatus::Done;
            case 1:
                while (!control.isCancelRequested())
                    QThread::msleep(1);
                return zdt::StatusOf(false, control);
            case 2:
                messages.showMessage({"", "broken", zdt::MessageIcon::Error});
                return zdt::StatusOf(false, control);
            default:
                throw std::runtime_error("thrown text");
            }
        });
        QSignalSpy finished(&operation, &BackgroundOperation::finished);
        QVERIFY(!operation.isRunning());
        operation.start();
        QVERIFY(operation.isRunning());
        if (kind == 1)
            operation.cancel();
        QVERIFY(QTest::qWaitFor([&] { return !finished.isEmpty(); }, TimeoutMs));
        QVERIFY(!operation.isRunning());
        QVERIFY(ranOnOtherThread);
        QCOMPARE(finished.first().at(0).value<zdt::OperationStatus>(), zdt::OperationStatus(expected));
        QCOMPARE(operation.outcome().status, zdt::OperationStatus(expected));
        if (message.isEmpty()) {
            QVERIFY(operation.outcome().messages.empty());
        } else {
            QCOMPARE(operation.outcome().messages.size(), std::size_t(1));
            QCOMPARE(QString::fromStdString(operation.outcome().messages[0].text), message);
        }
        // Started twice, or waited on after its end: still one end.
        operation.start();
        operation.cancelAndWait();
        QTest::qWait(30);
        QCOMPARE(finished.size(), 1);
    }

    void updatesAreCoalescedPerEventPass() {
        constexpr int Posts = 100'000;
        std::atomic<int> posted{0};
        BackgroundOperation* self = nullptr;
        BackgroundOperation operation("updates", [&](zdt::MessageSink&, zdt::OperationControl& control) {
            for (int i = 0; i < Posts; ++i) {
                if (i % 2 == 0)
                    control.onProgress(unsigned(i), Posts);
                else
                    self->postUpdate();
                ++posted;
            }
            return zdt::OperationStatus::Done;
        });
        self = &operation;
        QSignalSpy updates(&operation, &BackgroundOperation::updated);
        QSignalSpy finished(&operation, &BackgroundOperation::finished);
        int updatesAtFinish = -1;
        connect(&operation, &BackgroundOperation::finished, this, [&] { updatesAtFinish = int(updates.size()); });
        operation.start();
        QVERIFY(QTest::qWaitFor([&] { return !finished.isEmpty(); }, TimeoutMs));
        QCOMPARE(posted.load(), Posts);
        QVERIFY(updates.size() >= 1);
        QVERIFY2(updates.size() < Posts / 100, qPrintable(QString::number(updates.size())));
        // The last news comes with the end, and nothing after it.
        QCOMPARE(updatesAtFinish, int(updates.size()));
        QTest::qWait(30);
        QCOMPARE(updatesAtFinish, int(updates.size()));
        QCOMPARE(operation.permille(), 999);
    }

    void cancelAndWaitReturnsOnceTheJobUnwound() {
        StoppableJob stoppable;
        BackgroundOperation operation("stoppable", stoppable.job());
        QSignalSpy finished(&operation, &BackgroundOperation::finished);
        QSignalSpy updates(&operation, &BackgroundOperation::updated);
        operation.start();
        QVERIFY(WaitFor(stoppable.started));
        // Let news pile up in the queue that must not arrive after the wait.
        QThread::msleep(20);
        operation.cancelAndWait();
        QVERIFY(stoppable.sawCancel);
        QVERIFY(stoppable.unwound);
        QVERIFY(operation.isCancelRequested());
        QVERIFY(!operation.isRunning());
        const qsizetype updatesAtWait = updates.size();
        QTest::qWait(50);
        QCOMPARE(finished.size(), 0);
        QCOMPARE(updates.size(), updatesAtWait);
    }

    void destroyingARunningOperationCancelsAndWaits() {
        StoppableJob stoppable;
        auto operation = std::make_unique<BackgroundOperation>("owned", stoppable.job());
        bool finishedCame = false;
        connect(operation.get(), &BackgroundOperation::finished, this, [&] { finishedCame = true; });
        operation->start();
        QVERIFY(WaitFor(stoppable.started));
        QThread::msleep(20);
        operation.reset();
        QVERIFY(stoppable.sawCancel);
        QVERIFY(stoppable.unwound);
        // Updates queued before the end go with the object.
        QTest::qWait(30);
        QVERIFY(!finishedCame);

        // An operation never started goes without waiting.
        BackgroundOperation idle("idle", stoppable.job());
    }

    void stripFollowsAnOperationAndCancelsIt() {
        QWidget window;
        auto* strip = new OperationStrip(&window);
        window.show();
        QVERIFY(!strip->isVisible());

        StoppableJob stoppable;
        BackgroundOperation operation("Reading trace.trc", stoppable.job());
        QSignalSpy finished(&operation, &BackgroundOperation::finished);
        operation.start();
        strip->follow(&operation);
        QVERIFY(strip->isVisible());
        QCOMPARE(strip->followed(), &operation);
        QCOMPARE(strip->label()->text(), QString("Reading trace.trc"));
        QCOMPARE(strip->cancelButton()->text(), QString("Cancel"));
        QVERIFY(strip->cancelButton()->isVisible());
        QTRY_COMPARE(strip->progressBar()->value(), 500);

        strip->cancelButton()->click();
        QVERIFY(!strip->cancelButton()->isEnabled());
        QVERIFY(QTest::qWaitFor([&] { return !finished.isEmpty(); }, TimeoutMs));
        QCOMPARE(finished.first().at(0).value<zdt::OperationStatus>(), zdt::OperationStatus::Cancelled);
        QVERIFY(!strip->isVisible());
        QVERIFY(strip->followed() == nullptr);

        // Work that may not stop offers no Cancel; the strip goes with the operation.
        StoppableJob uncancellable;
        auto pass = std::make_unique<BackgroundOperation>("Filtering", uncancellable.job());
        pass->setCancellable(false);
        pass->start();
        strip->follow(pass.get());
        QVERIFY(strip->isVisible());
        QVERIFY(!strip->cancelButton()->isVisible());
        pass.reset();
        QVERIFY(uncancellable.unwound);
        QVERIFY(!strip->isVisible());
        QVERIFY(strip->followed() == nullptr);

        // An operation that has already ended is not shown.
        BackgroundOperation ended("ended",
                                  [](zdt::MessageSink&, zdt::OperationControl&) { return zdt::OperationStatus::Done; });
        QSignalSpy endedFinished(&ended, &BackgroundOperation::finished);
        ended.start();
        QVERIFY(endedFinished.wait(TimeoutMs));
        strip->follow(&ended);
        QVERIFY(!strip->isVisible());
    }
};

QTEST_MAIN(BackgroundOperationTest)
#include "BackgroundOperationTest.moc"
