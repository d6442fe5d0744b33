#pragma once

#include "app/UiDocument.h"

namespace zdtui {

// The snapshot family: files named ".snp" in any case.
class SnpTemplate final : public DocumentTemplate {
public:
    QString extension() const override { return QStringLiteral(".SNP"); }
    std::unique_ptr<UiDocument> createDocument() override;
};

} // namespace zdtui
