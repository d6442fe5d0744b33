#pragma once

#include "classic/CanFilterDialogLogic.h"
#include "classic/CanFilterPrompt.h"

#include <QPointer>
#include <QString>
#include <QWidget>

namespace zdtui {

// The document's CAN filter question answered by the CCanFilter dialog. Keep one per
// document: it remembers the last accepted filter, so that OK on an unchanged choice
// does not filter again.
class CanFilterDialogPrompt final : public CanFilterPrompt {
public:
    CanFilterDialogPrompt(QWidget* parent, const QString& tracePath);
    // `programDir` replaces the running program's directory when looking for the settings.
    CanFilterDialogPrompt(QWidget* parent, const QString& tracePath, const QString& programDir);

    Answer Run(const Request& request) override;
    std::string FilterPath(const std::string& name) override;

private:
    QPointer<QWidget> m_parent;
    QString m_tracePath;
    QString m_programDir;
    CanFilterDialogState m_state;
};

} // namespace zdtui
