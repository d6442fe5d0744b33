#pragma once

#include "export/ConversionPipeline.h"

#include <optional>

namespace zdtui {

// The settings of the windows' conversions: the run's temporary directory and the list
// separator of the user's locale (";" where numbers are written with a decimal comma).
ZDTAnalyzer::ConversionSettings DesktopConversionSettings();

// Where the windows' conversions find their installation; nothing takes the program's own.
// Tests point it at an installation of their own.
void SetDesktopConversionPaths(std::optional<ZDTAnalyzer::ConversionPaths> paths);

} // namespace zdtui
