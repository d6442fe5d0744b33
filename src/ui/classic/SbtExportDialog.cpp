#include "classic/SbtExportDialog.h"

#include <QFileDialog>

namespace zdtui {

QString RunSbtExportDialog(QWidget* parent) {
    QFileDialog dialog(parent, QStringLiteral("Save As ASCII file"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(QStringLiteral("Statistics+Bytes&Timings (*.sbt)"));
    dialog.setDefaultSuffix(QStringLiteral("sbt"));
    dialog.setOption(QFileDialog::DontConfirmOverwrite, false);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    return dialog.selectedFiles().constFirst();
}

} // namespace zdtui
