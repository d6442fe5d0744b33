#include "export/DesktopConversionSettings.h"

#include "app/CAnalyzerApp.h"

#include <QDir>
#include <QFile>
#include <QLocale>

namespace zdtui {
namespace {

std::optional<ZDTAnalyzer::ConversionPaths>& PathsOverride() {
    static std::optional<ZDTAnalyzer::ConversionPaths> paths;
    return paths;
}

std::string TemporaryDirectory() {
    const CAnalyzerApp* app = CAnalyzerApp::instance();
    const QString directory =
        app != nullptr && !app->sessionTempDir().isEmpty() ? app->sessionTempDir() : QDir::tempPath();
    std::string path = QFile::encodeName(directory).toStdString();
    if (path.empty() || path.back() != '/')
        path += '/';
    return path;
}

} // namespace

ZDTAnalyzer::ConversionSettings DesktopConversionSettings() {
    ZDTAnalyzer::ConversionSettings settings;
    if (PathsOverride())
        settings.paths = *PathsOverride();
    settings.temporaryDirectory = TemporaryDirectory();
    settings.listSeparator = ZDTAnalyzer::ListSeparatorForDecimalPoint(QLocale().decimalPoint().toStdString());
    return settings;
}

void SetDesktopConversionPaths(std::optional<ZDTAnalyzer::ConversionPaths> paths) {
    PathsOverride() = std::move(paths);
}

} // namespace zdtui
