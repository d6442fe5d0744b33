#include "app/ClassicTemplate.h"

#include "classic/ClassicDocument.h"

namespace zdtui {
namespace {

// Names no extension: every file the other templates do not claim is tried as a classic trace.
class ClassicDocumentTemplate final : public DocumentTemplate {
public:
    QString extension() const override { return QString(); }
    std::unique_ptr<UiDocument> createDocument() override { return std::make_unique<ClassicDocument>(); }
};

} // namespace

std::unique_ptr<DocumentTemplate> MakeClassicTemplate() {
    return std::make_unique<ClassicDocumentTemplate>();
}

} // namespace zdtui
