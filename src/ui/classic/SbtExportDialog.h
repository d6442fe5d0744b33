#pragma once

#include <QString>

class QWidget;

namespace zdtui {

// Asks where to save the ".sbt" report ("Save As ASCII file"); empty when cancelled.
// An existing file is overwritten only after the user agreed.
QString RunSbtExportDialog(QWidget* parent);

} // namespace zdtui
