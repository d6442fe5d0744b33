// What both XML families share in their windows: the list keeps showing its rows while
// a search marks them on the worker thread, only the current window's document writes
// the status bar, and a document reads its file once.
#include "snp/SnpDoc.h"
#include "xpvt/XpvtDoc.h"

#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "app/UiDocument.h"
#include "snp/SnpUiDocument.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xmldoc/XmlListView.h"
#include "xpvt/XpvtUiDocument.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fstream>
#include <functional>
#include <memory>

using namespace zdtui;
using namespace operation_waits;

namespace {

struct Family {
    const char* name;
    std::function<std::unique_ptr<XmlUiDocument>(const QString& swapDirectory)> make;
    std::function<void(std::ostream& out, std::uint64_t bytes)> write;
    // A search that marks rows all through the file.
    std::function<void(XmlUiDocument& document, QWidget* parent)> search;
};

const Family Families[] = {
    {"snapshot", [](const QString& swap) { return std::make_unique<SnpUiDocument>(swap); },
     [](std::ostream& out, std::uint64_t bytes) {
         zdtgen::SnapshotOptions options;
         options.targetBytes = bytes;
         zdtgen::WriteSnapshot(out, options);
     },
     [](XmlUiDocument& document, QWidget* parent) {
         // The search reads the criteria while it runs.
         static ZDTAnalyzer::SnpFindCriteria criteria;
         criteria.searchProcessValue = true;
         criteria.valueNameOn = true; // an empty text is found in every name
         static_cast<SnpUiDocument&>(document).runFind(parent, criteria);
     }},
    {"process value trace", [](const QString& swap) { return std::make_unique<XpvtUiDocument>(swap); },
     [](std::ostream& out, std::uint64_t bytes) {
         zdtgen::XpvtTraceOptions options;
         options.schema = zdtgen::XpvtSchema::V701;
         options.targetBytes = bytes;
         zdtgen::WriteXpvtTrace(out, options);
     },
     [](XmlUiDocument& document, QWidget* parent) {
         auto& trace = static_cast<XpvtUiDocument&>(document);
         trace.xpvtDoc().findCriteria701().searchPrimitives = true;
         trace.xpvtDoc().findCriteria701().matchAll = true;
         trace.runFind(parent);
     }},
};

class RecordingStatus final : public StatusSink {
public:
    void SetStatusDocument(const QString& text, int count) override {
        writes << QStringLiteral("%1 %2").arg(text).arg(count);
    }
    void SetStatusText(const QString& text) override { writes << text; }
    QStringList writes;
};

QString Cell(XmlListView& view, int row, int column) {
    AdornedListModel* model = view.listModel();
    return model->data(model->index(row, column), Qt::DisplayRole).toString();
}

} // namespace

class XmlUiDocumentTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString swapDirectory() const { return m_dir->filePath("swap"); }

    QString writeFile(const Family& family, const QString& name, std::uint64_t bytes) {
        const QString path = m_dir->filePath(name);
        std::ofstream out(QFile::encodeName(path).toStdString(), std::ios::binary);
        family.write(out, bytes);
        return path;
    }

    static XmlListView* viewOf(QWidget* widget) { return qobject_cast<XmlListView*>(widget); }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QVERIFY(QDir().mkpath(swapDirectory()));
    }

    void cleanup() { m_dir.reset(); }

    void rowsStayOnScreenWhileASearchMarksThem() {
        for (const Family& family : Families) {
            RecordingBoxes boxes;
            // Large enough for a search of many event passes.
            const QString path = writeFile(family, "large", 6'000'000);
            std::unique_ptr<XmlUiDocument> document = family.make(swapDirectory());
            std::unique_ptr<XmlListView> view(viewOf(document->createView(nullptr, nullptr)));
            QVERIFY(view != nullptr);
            view->resize(900, 400);
            view->show();
            QVERIFY2(OpenAndWait(*document, path).opened, family.name);
            const int rows = qMin(view->itemCount(), 30);
            QVERIFY(rows > 10);
            QStringList before;
            for (int row = 0; row < rows; ++row)
                before << Cell(*view, row, 2);

            int samples = 0;
            QStringList shown;
            QTimer sampler;
            sampler.setInterval(0);
            connect(&sampler, &QTimer::timeout, this, [&] {
                if (!document->isBusy() || !shown.isEmpty())
                    return;
                ++samples;
                for (int row = 0; row < rows; ++row) {
                    if (Cell(*view, row, 2) != before[row] || Cell(*view, row, 0).size() != 3)
                        shown << QStringLiteral("row %1: '%2'").arg(row).arg(Cell(*view, row, 2));
                }
                view->viewport()->grab();
            });
            connect(document.get(), &UiDocument::operationStarted, &sampler, [&] { sampler.start(); });
            family.search(*document, view.get());
            QVERIFY(document->isBusy());
            QVERIFY(WaitUntilIdle(*document));
            sampler.stop();
            QVERIFY2(samples > 0, family.name);
            QVERIFY2(shown.isEmpty(), qPrintable(QString(family.name) + ": " + shown.join(", ")));
            QVERIFY(!document->baseDoc().findResults().empty());
            QVERIFY(boxes.boxes.isEmpty());
            document->close();
        }
    }

    void onlyTheCurrentWindowWritesTheStatus() {
        for (const Family& family : Families) {
            RecordingBoxes boxes;
            const QString path = writeFile(family, "small", 20'000);
            RecordingStatus status;
            QMdiArea area;
            area.resize(800, 600);
            area.show();
            std::unique_ptr<XmlUiDocument> behind = family.make(swapDirectory());
            std::unique_ptr<XmlUiDocument> current = family.make(swapDirectory());
            QMdiSubWindow* behindWindow = area.addSubWindow(behind->createView(nullptr, &status));
            QMdiSubWindow* currentWindow = area.addSubWindow(current->createView(nullptr, &status));
            behindWindow->show();
            currentWindow->show();
            area.setActiveSubWindow(currentWindow);

            QVERIFY2(OpenAndWait(*behind, path).opened, family.name);
            QCOMPARE(status.writes, QStringList());
            QVERIFY(OpenAndWait(*current, path).opened);
            const int rows = current->baseDoc().container().rowCount();
            QCOMPARE(status.writes.last(), QStringLiteral("%1 %2").arg(path).arg(rows));
            // A document reads its file once.
            QSignalSpy again(current.get(), &UiDocument::openFinished);
            current->startOpen(path);
            QVERIFY(!current->isOpening());
            QVERIFY(!current->isBusy());
            QTest::qWait(20);
            QCOMPARE(again.size(), 0);

            status.writes.clear();
            viewOf(behindWindow->widget())->activateView();
            QCOMPARE(status.writes, QStringList());
            area.setActiveSubWindow(behindWindow);
            viewOf(behindWindow->widget())->activateView();
            QCOMPARE(status.writes, QStringList({QStringLiteral("%1 %2").arg(path).arg(rows)}));

            // A closed document empties the bar once and is silent afterwards.
            status.writes.clear();
            behind->close();
            behind->refreshStatus();
            behind->close();
            QCOMPARE(status.writes, QStringList({QStringLiteral(" 0")}));
            current->close();
            delete behindWindow;
            delete currentWindow;
            QVERIFY(boxes.boxes.isEmpty());
        }
    }
};

QTEST_MAIN(XmlUiDocumentTest)
#include "XmlUiDocumentTest.moc"
