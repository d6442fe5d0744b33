#pragma once

#include <QDialog>

#include <string>
#include <utility>
#include <vector>

namespace zdtui {

// "Session Info" (dialog resource 1238): the facts of a classic trace, read-only.
class CSettingsInfo final : public QDialog {
    Q_OBJECT
public:
    // `fields` are label and value pairs, shown in their order.
    CSettingsInfo(QWidget* parent, const std::vector<std::pair<std::string, std::string>>& fields);
};

void RunSessionInfo(QWidget* parent, const std::vector<std::pair<std::string, std::string>>& fields);

} // namespace zdtui
