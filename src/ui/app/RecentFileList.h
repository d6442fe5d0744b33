#pragma once

#include <QString>
#include <QStringList>

namespace zdtui {

// The most recently opened files, newest first, kept under the section "Recent File List"
// with the keys "File1".."FileN" of the program's settings.
class RecentFileList {
public:
    RecentFileList(QString organization, QString application, int size);

    // Reads the list from the settings, replacing what is held.
    void load();
    // Puts `path` first (moving it if it is already listed) and writes the list.
    void add(const QString& path);
    // Drops entry `index` (a file that no longer opens) and writes the list.
    void remove(int index);

    const QStringList& paths() const { return m_paths; }
    int size() const { return m_size; }

private:
    void save() const;

    QString m_organization;
    QString m_application;
    int m_size;
    QStringList m_paths;
};

} // namespace zdtui
