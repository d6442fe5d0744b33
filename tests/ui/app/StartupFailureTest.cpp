// Start-up when a plain file stands where the temporary root must be.
#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "app/CMainFrame.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace zdtui;

namespace {

QString g_home;

class NoDocuments final : public DocumentTemplate {
public:
    QString extension() const override { return QString(); }
    std::unique_ptr<UiDocument> createDocument() override { return nullptr; }
};

// Keeps each box with its parent and whether the main frame was on screen when it came.
class FrameWatchingBoxes final : public Boxes {
public:
    struct Box {
        QWidget* parent;
        QString title;
        QString text;
        QMessageBox::Icon icon;
        bool frameVisible;
    };
    FrameWatchingBoxes() { Boxes::install(this); }
    ~FrameWatchingBoxes() override { Boxes::install(nullptr); }
    void show(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        const bool visible = app != nullptr && app->mainFrame() != nullptr && app->mainFrame()->isVisible();
        boxes.push_back({parent, title, text, icon, visible});
    }
    bool askYesNo(QWidget*, const QString&, const QString&, QMessageBox::Icon) override { return false; }

    CAnalyzerApp* app = nullptr;
    QVector<Box> boxes;
};

} // namespace

class StartupFailureTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fileBlockingTheTemporaryRootStopsTheStart() {
        FrameWatchingBoxes boxes;
        CAnalyzerApp app([] { return std::make_unique<NoDocuments>(); });
        boxes.app = &app;

        QVERIFY(!app.InitInstance({}));

        QCOMPARE(boxes.boxes.size(), 1);
        const FrameWatchingBoxes::Box& box = boxes.boxes.first();
        QCOMPARE(box.title, QString("E001_001 [Initialization failed.]"));
        QCOMPARE(box.text, QString("Temporary directory problem."));
        QCOMPARE(box.icon, QMessageBox::Critical);
        QVERIFY(box.parent == nullptr);
        QVERIFY(box.frameVisible);
        QVERIFY(app.sessionTempDir().isEmpty());
        // The blocking file is left as it was.
        QVERIFY(QFileInfo(QDir(g_home).filePath("Temp")).isFile());
    }
};

int main(int argc, char* argv[]) {
    QTemporaryDir home;
    g_home = home.path();
    QFile blocker(QDir(g_home).filePath("Temp"));
    if (!blocker.open(QIODevice::WriteOnly))
        return 2;
    blocker.close();
    qputenv("ZDT_ANALYZER_HOME", g_home.toUtf8());
    qputenv("XDG_CONFIG_HOME", QDir(g_home).filePath("config").toUtf8());
    QApplication application(argc, argv);
    StartupFailureTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "StartupFailureTest.moc"
