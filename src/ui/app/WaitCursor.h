#pragma once

#include <QGuiApplication>

namespace zdtui {

// The wait cursor for as long as the object lives.
class WaitCursor final {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

} // namespace zdtui
