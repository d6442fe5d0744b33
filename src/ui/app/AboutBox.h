#pragma once

#include <QDialog>

class QLabel;

namespace zdt {
struct EditionInfo;
}

namespace zdtui {

// The about box of an edition: its title, program name, the partner's extra line, and
// the program version.
class AboutBox final : public QDialog {
    Q_OBJECT
public:
    AboutBox(const zdt::EditionInfo& edition, const QString& version, QWidget* parent = nullptr);

    // The texts shown, top to bottom.
    QStringList lines() const;

private:
    QList<QLabel*> m_lines;
};

} // namespace zdtui
