#include "classic/StyleDialogs.h"

#include "classic/CStyleCan.h"
#include "classic/CStyleDiagnostic.h"

namespace zdtui {
namespace {

KLineByteSettings& LastLineSettings() {
    static KLineByteSettings settings;
    return settings;
}

} // namespace

bool RunStyleCan(QWidget* parent, TimeMode& mode, bool relativeChannelDisabled) {
    CStyleCan dialog(parent, mode, relativeChannelDisabled);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    mode = dialog.mode();
    return true;
}

bool RunStyleDiagnostic(QWidget* parent, TimeMode& mode, std::uint32_t& byteTime) {
    CStyleDiagnostic dialog(parent, mode, LastLineSettings());
    if (dialog.exec() != QDialog::Accepted)
        return false;
    LastLineSettings() = dialog.settings();
    mode = dialog.mode();
    if (mode == TimeMode::InterByte)
        byteTime = dialog.byteTime();
    return true;
}

} // namespace zdtui
