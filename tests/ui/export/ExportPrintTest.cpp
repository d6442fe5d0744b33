// Save As, Print and Print Preview of XML windows: the export runs as the document's
// operation and leaves the file at the chosen name, or nothing after a cancel; print and
// preview convert to a page that the one preview window of the process shows.
#include "SnapshotGenerator.h"
#include "export/ConversionPaths.h"
#include "export/DesktopConversionSettings.h"
#include "export/HtmlPrinter.h"
#include "export/PagedHtml.h"
#include "snp/SnpUiDocument.h"
#include "snp/SnpView.h"
#include "ui/IsolatedTestMain.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xpvt/XpvtUiDocument.h"
#include "xpvt/XpvtView.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <filesystem>
#include <fstream>
#include <memory>

using namespace zdtui;
using namespace operation_waits;

namespace {

const QString SourceInstallation = QStringLiteral(ZDT_SAMPLES_DIR "/../Analyzer/");

bool HasXalan() {
    return !QStandardPaths::findExecutable(QStringLiteral("Xalan")).isEmpty();
}

QByteArray Contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList EntriesOf(const QString& directory) {
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// A text the list shows, which every export format writes as it stands.
QString SomeListedText(const AdornedListModel& model) {
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 2; column < model.columnCount(); ++column) {
            const QString text = model.data(model.index(row, column), Qt::DisplayRole).toString();
            if (text.size() > 3 && !text.contains('&') && !text.contains('<') && !text.contains('"'))
                return text;
        }
    }
    return {};
}

} // namespace

class ExportPrintTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    std::unique_ptr<SnpUiDocument> openDocument(const QString& path) {
        auto document = std::make_unique<SnpUiDocument>(m_dir->filePath("swap"));
        if (!OpenAndWait(*document, path).opened)
            return nullptr;
        return document;
    }

    QString writeSnapshot(const QString& name, std::uint64_t snapshots) {
        zdtgen::SnapshotOptions options;
        options.seed = 11;
        options.snapshots = snapshots;
        const QString path = m_dir->filePath(name);
        std::ofstream out(QFile::encodeName(path).toStdString(), std::ios::binary);
        zdtgen::WriteSnapshot(out, options);
        return path;
    }

    // Answers the Save As dialog with `path` and the filter `filterIndex`.
    static void answerSaveAs(AdornedListView& view, const QString& path, int filterIndex) {
        view.setSaveAsChooser([path, filterIndex](QWidget*, const QString&) {
            return std::optional<AdornedListView::SaveAsChoice>(AdornedListView::SaveAsChoice{path, filterIndex});
        });
    }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QVERIFY(QDir().mkpath(m_dir->filePath("swap")));
        SetDesktopConversionPaths(ZDTAnalyzer::ConversionPaths(QFile::encodeName(SourceInstallation).toStdString()));
    }

    void cleanup() {
        SetDesktopConversionPaths(std::nullopt);
        m_dir.reset();
    }

    void saveAsWritesCsvAndHtmlOfTheRows() {
        if (!HasXalan())
            QSKIP("Xalan is not installed");
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(QStringLiteral(ZDT_SAMPLES_DIR "/snapshots_basic.snp"));
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(qobject_cast<SnpView*>(document->createView(nullptr, nullptr)));
        QVERIFY(view != nullptr);
        const int rows = view->listModel()->rowCount();
        QVERIFY(rows > 0);
        const QByteArray name = SomeListedText(*view->listModel()).toUtf8();
        QVERIFY(!name.isEmpty());

        answerSaveAs(*view, m_dir->filePath("out"), 4);
        view->runCommand(AdornedListView::SaveAsId);
        QVERIFY(document->isBusy());
        QVERIFY(!view->commandAction(ViewCommand::SaveAs)->isEnabled());
        QVERIFY(WaitUntilIdle(*document));
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
        const QByteArray csv = Contents(m_dir->filePath("out.csv"));
        QVERIFY2(csv.contains(name), csv.left(400).constData());
        QVERIFY(csv.count('\n') >= rows);

        answerSaveAs(*view, m_dir->filePath("out.html"), 1);
        view->runCommand(AdornedListView::SaveAsId);
        QVERIFY(WaitUntilIdle(*document));
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
        const QByteArray html = Contents(m_dir->filePath("out.html"));
        QVERIFY(html.toLower().contains("<html"));
        QVERIFY(html.contains(name));
        QVERIFY(view->commandAction(ViewCommand::SaveAs)->isEnabled());
    }

    // A 7.01 trace exports through its own sheets, bound once the read told the schema.
    void saveAsOfAProcessValueTrace() {
        if (!HasXalan())
            QSKIP("Xalan is not installed");
        RecordingBoxes boxes;
        auto document = std::make_unique<XpvtUiDocument>(m_dir->filePath("swap"));
        std::unique_ptr<XpvtView> view(qobject_cast<XpvtView*>(document->createView(nullptr, nullptr)));
        QVERIFY(OpenAndWait(*document, QStringLiteral(ZDT_SAMPLES_DIR "/xpvt_701_basic.xpvt")).opened);
        QVERIFY(!view->is702());
        const QByteArray text = SomeListedText(*view->listModel()).toUtf8();
        QVERIFY(!text.isEmpty());
        answerSaveAs(*view, m_dir->filePath("trace.csv"), 4);
        view->runCommand(AdornedListView::SaveAsId);
        QVERIFY(WaitUntilIdle(*document));
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
        QVERIFY(Contents(m_dir->filePath("trace.csv")).contains(text));
    }

    // The tool never ends by itself: only the cancel stops it, and it leaves nothing.
    void cancelledExportLeavesNothing() {
        const QString installation = m_dir->filePath("Analyzer/");
        QVERIFY(QDir().mkpath(installation));
        {
            QFile script(installation + "xalan.sh");
            QVERIFY(script.open(QIODevice::WriteOnly));
            script.write("#!/bin/sh\nexec sleep 60\n");
        }
        QFile::setPermissions(installation + "xalan.sh", QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        SetDesktopConversionPaths(ZDTAnalyzer::ConversionPaths(QFile::encodeName(installation).toStdString()));

        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(writeSnapshot("small.snp", 3));
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(qobject_cast<SnpView*>(document->createView(nullptr, nullptr)));
        const QString outputs = m_dir->filePath("outputs");
        QVERIFY(QDir().mkpath(outputs));

        answerSaveAs(*view, outputs + "/cancelled.html", 1);
        view->runCommand(AdornedListView::SaveAsId);
        QVERIFY(document->isBusy());
        // Long enough for the tool to have started and made its partial output.
        QTest::qWait(300);
        QVERIFY(document->isBusy());
        document->cancelOperation();
        QVERIFY(WaitUntilIdle(*document));
        QCOMPARE(EntriesOf(outputs), QStringList());
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
    }

    // A failing sheet shows the tool's box and leaves no file at the chosen name.
    void failedExportShowsItsBoxAndLeavesNothing() {
        const QString installation = m_dir->filePath("Analyzer/");
        QVERIFY(QDir().mkpath(installation));
        QVERIFY(QFile::copy(SourceInstallation + "xalan.sh", installation + "xalan.sh"));
        SetDesktopConversionPaths(ZDTAnalyzer::ConversionPaths(QFile::encodeName(installation).toStdString()));

        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(writeSnapshot("small.snp", 3));
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(qobject_cast<SnpView*>(document->createView(nullptr, nullptr)));
        const QString outputs = m_dir->filePath("outputs");
        QVERIFY(QDir().mkpath(outputs));
        answerSaveAs(*view, outputs + "/failed.html", 1);
        view->runCommand(AdornedListView::SaveAsId);
        QVERIFY(WaitUntilIdle(*document));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QStringLiteral("E011_001 [XSL Transformation failed.]"));
        QCOMPARE(EntriesOf(outputs), QStringList());
    }

    void previewShowsThePagesInOneReusedWindowAndPrintWritesThem() {
        if (!HasXalan())
            QSKIP("Xalan is not installed");
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(QStringLiteral(ZDT_SAMPLES_DIR "/snapshots_basic.snp"));
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(qobject_cast<SnpView*>(document->createView(nullptr, nullptr)));
        QVERIFY(view->commandAction(ViewCommand::PrintPreview)->isEnabled());

        view->runCommand(AdornedListView::PrintPreviewId);
        QVERIFY(WaitUntilIdle(*document));
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
        QPrintPreviewDialog* dialog = HtmlPrinter::instance().previewDialog();
        QVERIFY(dialog != nullptr);
        QVERIFY(dialog->isVisible());
        auto* pages = dialog->findChild<QPrintPreviewWidget*>();
        QVERIFY(pages != nullptr);
        QVERIFY(QTest::qWaitFor([&] { return pages->pageCount() > 0; }, 10'000));
        const QString firstText = HtmlPrinter::instance().firstPieceText();
        const QString name = SomeListedText(*view->listModel());
        QVERIFY(!name.isEmpty());
        QVERIFY(firstText.contains(name));

        // A bigger trace in the same window: more pages, no second window.
        std::unique_ptr<SnpUiDocument> bigger = openDocument(writeSnapshot("bigger.snp", 60));
        QVERIFY(bigger != nullptr);
        std::unique_ptr<SnpView> biggerView(qobject_cast<SnpView*>(bigger->createView(nullptr, nullptr)));
        const int before = pages->pageCount();
        biggerView->runCommand(AdornedListView::PrintPreviewId);
        QVERIFY(WaitUntilIdle(*bigger));
        QCOMPARE(HtmlPrinter::instance().previewDialog(), dialog);
        QVERIFY(QTest::qWaitFor([&] { return pages->pageCount() > before; }, 10'000));

        // Print goes to the printer the dialog confirmed: here a PDF file.
        const QString pdf = m_dir->filePath("printed.pdf");
        HtmlPrinter::instance().setPrintConfirmer([pdf](QPrinter& printer, QWidget*) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            return true;
        });
        view->runCommand(AdornedListView::PrintId);
        QVERIFY(WaitUntilIdle(*document));
        HtmlPrinter::instance().setPrintConfirmer({});
        HtmlPrinter::instance().printer().setOutputFileName(QString());
        QVERIFY(Contents(pdf).startsWith("%PDF"));
        QVERIFY2(boxes.boxes.isEmpty(), qPrintable(boxes.Texts().join('\n')));
        // The temporary pages went once they were read.
        QCOMPARE(QDir(QDir::tempPath()).entryList({QStringLiteral("temp*_*.html")}, QDir::Files), QStringList());
    }

    void pagesRepeatTheHeadAndCutBetweenRows() {
        const QString head = "<html><head><style>td{}</style></head><body><h1>T</h1>";
        const QString table = "<table class=\"rows\"><thead><tr><th>Line</th></tr></thead><tbody>";
        QString rows;
        for (int row = 1; row <= 5; ++row)
            rows += QStringLiteral("<tr style=\"x\"><td>%1</td></tr>\n").arg(row);
        const QString tail = "</tbody></table><p>end</p></body></html>";
        const PagedHtml pages(head + table + rows + tail, 2);
        QCOMPARE(pages.pieceCount(), 3);
        QCOMPARE(pages.rowCount(), 5);
        QCOMPARE(pages.rowsIn(2), 1);
        QVERIFY(pages.piece(0).startsWith(head + table + "<tr style=\"x\"><td>1</td>"));
        QVERIFY(pages.piece(0).endsWith("<td>2</td></tr>\n</tbody></table></body></html>"));
        // A later piece has the head and the column titles, not what stood between them.
        QCOMPARE(pages.piece(1), "<html><head><style>td{}</style></head><body>" + table +
                                     "<tr style=\"x\"><td>3</td></tr>\n<tr style=\"x\"><td>4</td></tr>\n" +
                                     "</tbody></table></body></html>");
        QVERIFY(pages.piece(2).endsWith("<td>5</td></tr>\n" + tail));

        // Without a body of rows the page stays whole.
        const QString plain = "<html><body><p>nothing</p></body></html>";
        QCOMPARE(PagedHtml(plain, 2).pieceCount(), 1);
        QCOMPARE(PagedHtml(plain, 2).piece(0), plain);
    }

    // The preview of a page far larger than it shows opens on the first rows and says so.
    void previewOfABigPageShowsItsFirstRows() {
        QString html = "<html><head></head><body><table><thead><tr><th>Line</th><th>Name</th></tr></thead><tbody>";
        constexpr int Rows = 100'000;
        for (int row = 1; row <= Rows; ++row)
            html += QStringLiteral("<tr><td>%1</td><td>ProcessValue BatteryVoltage</td></tr>\n").arg(row);
        html += "</tbody></table></body></html>";
        const QString path = m_dir->filePath("big.html");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(html.toUtf8());
        file.close();

        QElapsedTimer timer;
        timer.start();
        QVERIFY(HtmlPrinter::instance().load(path));
        HtmlPrinter::instance().preview();
        auto* pages = HtmlPrinter::instance().previewDialog()->findChild<QPrintPreviewWidget*>();
        QVERIFY(QTest::qWaitFor([&] { return pages->pageCount() > 0; }, 10'000));
        qInfo("first preview page of %d rows after %lld ms", Rows, timer.elapsed());
        QCOMPARE(HtmlPrinter::instance().pages().rowCount(), Rows);
        QVERIFY(HtmlPrinter::instance().previewDialog()->windowTitle().contains(
            QStringLiteral("the first %1 of %2 rows").arg(HtmlPrinter::PreviewRows).arg(Rows)));
        // About 25 rows a page: the preview holds the first rows' pages, not the rest.
        QVERIFY2(pages->pageCount() < 100, qPrintable(QString::number(pages->pageCount())));
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<ExportPrintTest>(argc, argv);
}

#include "ExportPrintTest.moc"
