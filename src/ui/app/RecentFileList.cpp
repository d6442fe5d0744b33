#include "app/RecentFileList.h"

#include <QSettings>

namespace zdtui {
namespace {

const QString Section = QStringLiteral("Recent File List");

QString EntryKey(int index) {
    return QStringLiteral("File%1").arg(index + 1);
}

} // namespace

RecentFileList::RecentFileList(QString organization, QString application, int size)
    : m_organization(std::move(organization)), m_application(std::move(application)), m_size(size) {}

void RecentFileList::load() {
    QSettings settings(m_organization, m_application);
    settings.beginGroup(Section);
    m_paths.clear();
    for (int i = 0; i < m_size; ++i) {
        const QString path = settings.value(EntryKey(i)).toString();
        if (!path.isEmpty() && !m_paths.contains(path))
            m_paths << path;
    }
}

void RecentFileList::add(const QString& path) {
    if (path.isEmpty())
        return;
    m_paths.removeAll(path);
    m_paths.prepend(path);
    while (m_paths.size() > m_size)
        m_paths.removeLast();
    save();
}

void RecentFileList::remove(int index) {
    if (index < 0 || index >= m_paths.size())
        return;
    m_paths.removeAt(index);
    save();
}

// Written on every change rather than at exit, so that a crash keeps the list.
void RecentFileList::save() const {
    QSettings settings(m_organization, m_application);
    settings.beginGroup(Section);
    for (int i = 0; i < m_size; ++i) {
        if (i < m_paths.size())
            settings.setValue(EntryKey(i), m_paths[i]);
        else
            settings.remove(EntryKey(i));
    }
}

} // namespace zdtui
