#pragma once

#include "app/UiDocument.h"

#include <memory>

namespace zdtui {

// The classic trace family, registered first so that every file no other template
// claims is tried as a classic trace.
std::unique_ptr<DocumentTemplate> MakeClassicTemplate();

} // namespace zdtui
