#include "app/PlaceholderTemplate.h"

#include "app/PlaceholderDocument.h"

namespace zdtui {

std::unique_ptr<UiDocument> PlaceholderTemplate::createDocument() {
    return std::make_unique<PlaceholderDocument>(m_kindName);
}

} // namespace zdtui
