#pragma once

#include "app/UiDocument.h"

#include <QString>

#include <string>

class QWidget;

namespace zdtui {

// Where a filter run of the desktop keeps its files: the run's temporary directory (with a
// trailing "/"), or the system's when the application has none.
QString FilterRunDirectory();
// A fresh name in FilterRunDirectory() ending in `extension` (".tmp.xpvt", ".tmp.snp").
QString FilterResultName(const char* extension);
// The caption of the window of a filter's result: which file it is a filtered copy of.
QString FilteredCopyTitle(const QString& resultPath, const QString& originalPath);

// The path as the core reads it.
std::string LocalFilePath(const QString& path);

// The end of a filter run on the thread of the windows. Done: the result opens through the
// application's open as a new document, captioned by FilteredCopyTitle. Failed: the run's
// boxes on `boxParent`. Cancelled: nothing; the run left no result behind.
UiDocument::OperationFinish FilterRunFinish(QWidget* boxParent, const QString& resultPath, const QString& originalPath);

} // namespace zdtui
