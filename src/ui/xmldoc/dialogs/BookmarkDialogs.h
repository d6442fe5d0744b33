#pragma once

#include "xmldoc/BaseDoc.h"

#include <QString>

#include <string>

class QWidget;

namespace zdtui {

// The bookmark list command: shows the document's bookmarks, then removes those deleted
// in the dialog and, after "&Go to", asks the views to jump to the chosen row.
void RunBookmarkList(QWidget* parent, ZDTAnalyzer::BaseDoc& doc, const QString& pathName);

// Asks for a new bookmark's name and description; true on OK, with a non-empty name.
// Both are left as they were when the dialog is cancelled.
bool RunBookmarkInfo(QWidget* parent, std::string& name, std::string& description);

} // namespace zdtui
