#include "app/CAnalyzerApp.h"

#include "app/AboutBox.h"
#include "app/BackgroundOperation.h"
#include "app/Boxes.h"
#include "app/BrandEdition.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/DocumentRoute.h"
#include "app/HelpWindow.h"
#include "app/WaitCursor.h"
#include "common/ChildProcess.h"
#include "snp/SnpTemplate.h"
#include "xpvt/XpvtTemplate.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMdiArea>
#include <QPageSetupDialog>
#include <QPrinter>

#include <memory>

#ifndef ZDT_PROGRAM_VERSION
#define ZDT_PROGRAM_VERSION "0.1.0"
#endif

namespace zdtui {
namespace {

CAnalyzerApp* g_application = nullptr;

constexpr int RecentFileCount = 8;

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

void ShowMessage(QWidget* parent, const zdt::UserMessage& message) {
    Boxes::instance().show(parent, QString::fromStdString(message.title), QString::fromStdString(message.text),
                           ToQtIcon(message.icon));
}

} // namespace

CAnalyzerApp::CAnalyzerApp(TemplateFactory classicTemplate)
    : m_classicTemplate(std::move(classicTemplate)), m_edition(zdt::EditionInfoFor(zdt::BrandEdition())),
      m_recentFiles(QStringLiteral("Norvika"), QStringLiteral("ZDT7"), RecentFileCount) {
    g_application = this;
}

CAnalyzerApp::~CAnalyzerApp() {
    if (m_mainFrame != nullptr) {
        // Every document closes while the frame can still take its last status.
        for (CChildFrame* child : m_mainFrame->childFrames())
            child->close();
        m_mainFrame.reset();
    }
    // Closing a window ends its work and the tools that work started; this catches any
    // tool started outside a document's work.
    zdt::KillRunningChildProcesses();
    delete m_helpWindow;
    if (g_application == this)
        g_application = nullptr;
    // m_sessionTempDir empties and removes the per-run directory as it goes.
}

CAnalyzerApp* CAnalyzerApp::instance() {
    return g_application;
}

bool CAnalyzerApp::InitInstance(const QStringList& arguments) {
    // Resolved first, so that nothing later finds another program directory.
    zdt::AnalyzerBinaryDir();
    // The edition's title is the program's name: untitled boxes carry it. (A display name
    // would be appended to every window title as well.)
    QCoreApplication::setApplicationName(Text(m_edition.applicationTitle));

    m_recentFiles.load();
    registerTemplates();

    m_mainFrame = std::make_unique<CMainFrame>(*this, m_edition);

    // The first argument goes straight to its document; the trace extensions are the file
    // dialog's rule, not the command line's. No argument opens nothing.
    m_mainFrame->show();
    // The run's directory stands before the command line's file is read: the read runs
    // in the background and makes its swap file there at once.
    if (std::optional<zdt::UserMessage> failure = m_sessionTempDir.Create()) {
        ShowMessage(nullptr, *failure);
        return false;
    }
    // A file manager hands over every file the user chose; the program ends only when
    // none of them could be opened.
    bool anyOpened = arguments.isEmpty();
    for (const QString& path : arguments)
        anyOpened = openDocumentFile(path) != nullptr || anyOpened;
    return anyOpened;
}

void CAnalyzerApp::registerTemplates() {
    m_templates.clear();
    m_templates.push_back(m_classicTemplate());
    m_templates.push_back(std::make_unique<XpvtTemplate>());
    m_templates.push_back(std::make_unique<SnpTemplate>());
}

// A template that names the file's extension (in any case) takes it; every other file
// falls to the first template.
DocumentTemplate* CAnalyzerApp::matchTemplate(const QString& path) const {
    if (m_templates.empty())
        return nullptr;
    const QString suffix = QFileInfo(path).suffix();
    if (!suffix.isEmpty()) {
        const QString extension = QLatin1Char('.') + suffix;
        for (const std::unique_ptr<DocumentTemplate>& documentTemplate : m_templates) {
            const QString named = documentTemplate->extension();
            if (!named.isEmpty() && named.compare(extension, Qt::CaseInsensitive) == 0)
                return documentTemplate.get();
        }
    }
    return m_templates.front().get();
}

CChildFrame* CAnalyzerApp::findOpenDocument(const QString& path) const {
    if (m_mainFrame == nullptr)
        return nullptr;
    for (CChildFrame* child : m_mainFrame->childFrames()) {
        if (!child->isHidden() && child->document()->pathName() == path)
            return child;
    }
    return nullptr;
}

UiDocument* CAnalyzerApp::openDocumentFile(const QString& path) {
    DocumentTemplate* documentTemplate = matchTemplate(path);
    if (documentTemplate == nullptr || m_mainFrame == nullptr)
        return nullptr;
    // One spelling per file, so that a file already open (or still being read) is found again.
    const QString fullPath = path.isEmpty() ? path : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (CChildFrame* open = findOpenDocument(fullPath)) {
        m_mainFrame->mdiArea()->setActiveSubWindow(open);
        return open->document();
    }

    // The window and its list stand before the file is read, so the rows show as they come.
    std::unique_ptr<UiDocument> document = documentTemplate->createDocument();
    UiDocument* result = document.get();
    const QPointer<QMdiSubWindow> previous = m_mainFrame->mdiArea()->currentSubWindow();
    auto* child =
        new CChildFrame(std::move(document), m_mainFrame.get(), QFileInfo(fullPath).fileName(), m_mainFrame.get());
    if (!m_mainFrame->isVisible())
        m_mainFrame->show();
    m_mainFrame->addChildFrame(child);
    connect(result, &UiDocument::openFinished, this,
            [this, child = QPointer<CChildFrame>(child), previous, fullPath](bool opened) {
                openEnded(child, previous, fullPath, opened);
            });
    result->startOpen(fullPath);
    return result;
}

void CAnalyzerApp::openEnded(CChildFrame* child, QMdiSubWindow* previous, const QString& fullPath, bool opened) {
    if (child == nullptr)
        return;
    UiDocument* document = child->document();
    const std::vector<zdt::UserMessage> messages = document->takeOpenMessages();
    if (opened) {
        m_recentFiles.add(fullPath);
    } else {
        // The window goes before its boxes come: nothing stands behind them. The area
        // showed the window it replaced in its normal state; it goes back as it was.
        const bool wasMaximised = child->isMaximized();
        child->discard();
        delete child;
        if (previous != nullptr) {
            m_mainFrame->mdiArea()->setActiveSubWindow(previous);
            if (wasMaximised)
                previous->showMaximized();
        }
    }
    m_mainFrame->refreshCommands();
    BoxMessageSink boxes(m_mainFrame.get());
    for (const zdt::UserMessage& message : messages)
        boxes.showMessage(message);
    Q_EMIT documentOpened(fullPath, opened);
    if (opened)
        document->afterOpen(m_mainFrame.get());
}

void CAnalyzerApp::OnFileOpen() {
    QFileDialog dialog(m_mainFrame.get(), QStringLiteral("Open"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    // The filter's name already lists the extensions; the pattern is Qt's blank-separated form.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    const QString pattern =
        QString::fromLatin1(zdt::TraceFilesFilterPattern).replace(QLatin1Char(';'), QLatin1Char(' '));
    // "All files" lets a user pick any name; the route then says which it cannot open.
    dialog.setNameFilters({QStringLiteral("%1 (%2)").arg(QString::fromLatin1(zdt::TraceFilesFilterName), pattern),
                           QStringLiteral("All files (*)")});
    if (dialog.exec() != QDialog::Accepted)
        return;
    OpenSelectedFiles(dialog.selectedFiles());
}

void CAnalyzerApp::OpenSelectedFiles(const QStringList& paths) {
    std::vector<std::string> names;
    names.reserve(paths.size());
    for (const QString& path : paths)
        names.push_back(path.toStdString());
    OpenSelection(zdt::SelectFromFileDialog(names));
}

void CAnalyzerApp::OpenSelection(const zdt::DocumentSelection& selection) {
    for (const std::string& path : selection.accepted)
        openDocumentFile(QString::fromStdString(path));

    // New windows take their place beside the others (CMainFrame::addChildFrame); the
    // windows already open keep their arrangement.
    if (selection.warning)
        ShowMessage(selection.warningOnMainFrame ? m_mainFrame.get() : nullptr, *selection.warning);
}

void CAnalyzerApp::OpenRecentFile(int index) {
    const QStringList& paths = m_recentFiles.paths();
    if (index < 0 || index >= paths.size())
        return;
    const QString path = paths[index];
    // An entry that no longer opens leaves the list once its read has ended.
    const auto forgetIfFailed = std::make_shared<QMetaObject::Connection>();
    *forgetIfFailed = connect(this, &CAnalyzerApp::documentOpened, this,
                              [this, path, forgetIfFailed](const QString& opened, bool ok) {
                                  if (opened != QDir::cleanPath(QFileInfo(path).absoluteFilePath()))
                                      return;
                                  disconnect(*forgetIfFailed);
                                  if (!ok)
                                      forgetRecentFile(path);
                              });
    if (openDocumentFile(path) == nullptr) {
        disconnect(*forgetIfFailed);
        forgetRecentFile(path);
    }
}

void CAnalyzerApp::forgetRecentFile(const QString& path) {
    m_recentFiles.remove(int(m_recentFiles.paths().indexOf(path)));
    if (m_mainFrame != nullptr)
        m_mainFrame->refreshCommands();
}

void CAnalyzerApp::OnAppAbout() {
    AboutBox box(m_edition, ProgramVersion(), m_mainFrame.get());
    box.exec();
}

void CAnalyzerApp::OnHelp() {
    const QString page = HelpPagePath();
    {
        WaitCursor wait;
        if (QFileInfo(page).isFile()) {
            if (m_helpWindow == nullptr)
                m_helpWindow = new HelpWindow(m_mainFrame.get());
            m_helpWindow->showPage(page);
            m_helpWindow->show();
            m_helpWindow->raise();
            m_helpWindow->activateWindow();
            return;
        }
    }
    Boxes::instance().show(m_mainFrame.get(), QString(), QStringLiteral("The help page cannot be found:\n%1").arg(page),
                           QMessageBox::Warning);
}

void CAnalyzerApp::OnFilePrintSetup() {
    QPageSetupDialog dialog(&printer(), m_mainFrame.get());
    dialog.exec();
}

QPrinter& CAnalyzerApp::printer() {
    if (m_printer == nullptr)
        m_printer = std::make_unique<QPrinter>();
    return *m_printer;
}

QString CAnalyzerApp::HelpPagePath() {
    return QString::fromStdString(zdt::AnalyzerBinaryDir()) + QStringLiteral("help/analyzer_5.htm");
}

QString CAnalyzerApp::ProgramVersion() {
    return QStringLiteral(ZDT_PROGRAM_VERSION);
}

} // namespace zdtui
