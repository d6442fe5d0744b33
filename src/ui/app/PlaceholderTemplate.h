#pragma once

#include "app/UiDocument.h"

namespace zdtui {

// A document family that has its extension but no reader yet (XPVT, snapshot).
class PlaceholderTemplate final : public DocumentTemplate {
public:
    PlaceholderTemplate(QString extension, QString kindName)
        : m_extension(std::move(extension)), m_kindName(std::move(kindName)) {}

    QString extension() const override { return m_extension; }
    std::unique_ptr<UiDocument> createDocument() override;

private:
    QString m_extension;
    QString m_kindName;
};

} // namespace zdtui
