#pragma once

#include "app/UiDocument.h"

namespace zdtui {

// Stands in for a document family whose reader is not part of the program yet: it
// accepts any readable file and shows one line saying that it cannot be shown.
class PlaceholderDocument final : public UiDocument {
    Q_OBJECT
public:
    // `kindName` names the family in the view's line ("XPVT").
    explicit PlaceholderDocument(QString kindName, QObject* parent = nullptr);

    bool open(const QString& path, QWidget* dialogParent) override;
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    void close() override {}
    QString pathName() const override { return m_path; }

    const QString& kindName() const { return m_kindName; }

private:
    QString m_kindName;
    QString m_path;
};

} // namespace zdtui
