#pragma once

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

// Runs a test object with the settings and temporary directories of this run in a folder
// of their own, whatever edition the environment names.
template <typename Test> int RunIsolatedTest(int argc, char* argv[]) {
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QDir(home.path()).filePath("config").toUtf8());
    qputenv("ZDT_ANALYZER_HOME", QDir(home.path()).filePath("analyzer").toUtf8());
    qunsetenv("ZDT_BRAND");
    QApplication application(argc, argv);
    // Closing the frame in a test must not end the run.
    QApplication::setQuitOnLastWindowClosed(false);
    Test test;
    return QTest::qExec(&test, argc, argv);
}
