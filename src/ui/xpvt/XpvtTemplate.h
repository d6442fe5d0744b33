#pragma once

#include "app/UiDocument.h"

namespace zdtui {

// The process value trace family: files named ".xpvt" in any case.
class XpvtTemplate final : public DocumentTemplate {
public:
    QString extension() const override { return QStringLiteral(".XPVT"); }
    std::unique_ptr<UiDocument> createDocument() override;
};

} // namespace zdtui
