#include "xpvt/XpvtTemplate.h"

#include "xpvt/XpvtUiDocument.h"

namespace zdtui {

std::unique_ptr<UiDocument> XpvtTemplate::createDocument() {
    return std::make_unique<XpvtUiDocument>();
}

} // namespace zdtui
