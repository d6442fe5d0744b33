#include "classic/CanFilterDialogPrompt.h"

#include "classic/CCanFilter.h"
#include "classic/FilterDirectory.h"

#include <QCoreApplication>

namespace zdtui {

CanFilterDialogPrompt::CanFilterDialogPrompt(QWidget* parent, const QString& tracePath)
    : CanFilterDialogPrompt(parent, tracePath, QCoreApplication::applicationDirPath()) {}

CanFilterDialogPrompt::CanFilterDialogPrompt(QWidget* parent, const QString& tracePath, const QString& programDir)
    : m_parent(parent), m_tracePath(tracePath), m_programDir(programDir) {}

CanFilterPrompt::Answer CanFilterDialogPrompt::Run(const Request& request) {
    BeginCanFilterRun(m_state, request.activate, request.name, request.automatic);
    CCanFilter dialog(m_parent, m_state, m_tracePath, m_programDir);
    Answer answer;
    answer.ok = dialog.exec() == QDialog::Accepted;
    answer.activate = m_state.activate;
    answer.changed = m_state.changed;
    answer.name = m_state.filterName;
    return answer;
}

std::string CanFilterDialogPrompt::FilterPath(const std::string& name) {
    return zdt::FindFilterDirectory(m_programDir.toStdString(), m_tracePath.toStdString()) + name;
}

} // namespace zdtui
