#include "app/PlaceholderDocument.h"

#include "app/Boxes.h"
#include "app/PlaceholderView.h"

#include <QFile>
#include <QFileInfo>

namespace zdtui {

PlaceholderDocument::PlaceholderDocument(QString kindName, QObject* parent)
    : UiDocument(parent), m_kindName(std::move(kindName)) {}

bool PlaceholderDocument::open(const QString& path, QWidget* dialogParent) {
    // Reading nothing yet, but a path that names no readable file must still fail, as it
    // would once the family reads it.
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        Boxes::instance().show(dialogParent, QString(), QStringLiteral("%1\nThe file cannot be read.").arg(path),
                               QMessageBox::Warning);
        return false;
    }
    m_path = path;
    emit titleChanged(path);
    return true;
}

QWidget* PlaceholderDocument::createView(QWidget* parent, StatusSink* status) {
    return new PlaceholderView(*this, status, parent);
}

} // namespace zdtui
