// The program as a user starts it from a shell.
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

class ProgramStartTest : public QObject {
    Q_OBJECT
private:
    // The program is built into the top of the build tree, the tests one level below.
    static QString programPath() {
        return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath("../zdt-analyzer");
    }

private Q_SLOTS:
    void withoutDisplayItSaysWhatToDo() {
        const QString program = programPath();
        if (!QFileInfo(program).isExecutable())
            QSKIP("zdt-analyzer is not built beside the tests");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(name);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(program, {QStringLiteral(ZDT_SAMPLES_DIR "/can_bus_601.trc")});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
                 QString("zdt-analyzer needs a graphical display. Set DISPLAY, or run it under xvfb-run (for example: "
                         "xvfb-run -a build/zdt-analyzer samples/can_bus_601.trc).\n"));
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ProgramStartTest)

#include "ProgramStartTest.moc"
