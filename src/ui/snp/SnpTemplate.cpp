#include "snp/SnpTemplate.h"

#include "snp/SnpUiDocument.h"

namespace zdtui {

std::unique_ptr<UiDocument> SnpTemplate::createDocument() {
    return std::make_unique<SnpUiDocument>();
}

} // namespace zdtui
