#pragma once

#include "app/ClassicTemplate.h"
#include "app/HelpWindow.h"
#include "app/RecentFileList.h"
#include "app/UiDocument.h"
#include "app/WellKnownPaths.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class QMdiSubWindow;
class QPrinter;

namespace zdt {
struct DocumentSelection;
struct EditionInfo;
} // namespace zdt

namespace zdtui {

class CChildFrame;
class CMainFrame;

// The application object: the edition, the document templates, the main frame, the
// recent files and the temporary directories of the run.
class CAnalyzerApp final : public QObject {
    Q_OBJECT
public:
    using TemplateFactory = std::function<std::unique_ptr<DocumentTemplate>()>;

    CAnalyzerApp() : CAnalyzerApp(&MakeClassicTemplate) {}
    // `classicTemplate` makes the first template, the one that takes every file the
    // others do not name.
    explicit CAnalyzerApp(TemplateFactory classicTemplate);
    ~CAnalyzerApp() override;
    CAnalyzerApp(const CAnalyzerApp&) = delete;
    CAnalyzerApp& operator=(const CAnalyzerApp&) = delete;

    // The application object of the run, null when there is none.
    static CAnalyzerApp* instance();

    // The start-up sequence; `arguments` without the program name. False means that the
    // program must end (a failed command-line open or a blocked temporary directory).
    bool InitInstance(const QStringList& arguments);

    // Opens `path` with the template its extension names (none: the classic template),
    // without asking whether the extension is a trace's: its window comes at once and
    // the file is read in the background; documentOpened() tells the end. A file already
    // open (or being read) gets its window activated. Null only when no window could be
    // made; a read that fails or is cancelled takes its window away again.
    UiDocument* openDocumentFile(const QString& path);

    // The file-open command: the dialog, then OpenSelectedFiles.
    void OnFileOpen();
    // What the file-open command does with the chosen paths.
    void OpenSelectedFiles(const QStringList& paths);
    // Opens the accepted paths of a selection, cascades and warns as the selection says.
    void OpenSelection(const zdt::DocumentSelection& selection);
    // A recent-file entry; one that no longer opens leaves the list.
    void OpenRecentFile(int index);

    void OnAppAbout();
    // Shows the bundled help page.
    void OnHelp();
    void OnFilePrintSetup();

    CMainFrame* mainFrame() const { return m_mainFrame.get(); }
    const zdt::EditionInfo& edition() const { return m_edition; }
    RecentFileList& recentFiles() { return m_recentFiles; }
    const std::vector<std::unique_ptr<DocumentTemplate>>& templates() const { return m_templates; }
    // The per-run temporary directory with a trailing "/", empty until it stands.
    QString sessionTempDir() const { return QString::fromStdString(m_sessionTempDir.Path()); }
    // The printer set up by Print Setup, for views that print.
    QPrinter& printer();
    HelpWindow* helpWindow() const { return m_helpWindow; }

    static QString HelpPagePath();
    static QString ProgramVersion();

Q_SIGNALS:
    // The read of a file that openDocumentFile() began has ended, its boxes shown.
    void documentOpened(const QString& path, bool opened);

private:
    void registerTemplates();
    void forgetRecentFile(const QString& path);
    void openEnded(CChildFrame* child, QMdiSubWindow* previous, const QString& fullPath, bool opened);
    DocumentTemplate* matchTemplate(const QString& path) const;
    CChildFrame* findOpenDocument(const QString& path) const;

    TemplateFactory m_classicTemplate;
    const zdt::EditionInfo& m_edition;
    zdt::SessionTempDirectory m_sessionTempDir;
    RecentFileList m_recentFiles;
    std::vector<std::unique_ptr<DocumentTemplate>> m_templates;
    std::unique_ptr<QPrinter> m_printer;
    // Declared last so that it goes first: documents close while the directories stand.
    std::unique_ptr<CMainFrame> m_mainFrame;
    QPointer<HelpWindow> m_helpWindow;
};

} // namespace zdtui
