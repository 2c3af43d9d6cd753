#include "today/WindowState.h"

#include <QSettings>
#include <QString>

#include "platform/system/Paths.h"

namespace vantrel {

namespace {

const QString kGeometry = QStringLiteral("geometry");
const QString kExpanded = QStringLiteral("expanded");

QString stateFile(const std::filesystem::path& directory) {
  return QString::fromStdString((directory / "window.ini").string());
}

}  // namespace

WindowState WindowState::load() {
  const auto directory = paths::stateDirectory();
  if (!directory) return {};
  const QSettings file(stateFile(*directory), QSettings::IniFormat);
  return {file.value(kGeometry).toByteArray(), file.value(kExpanded).toBool()};
}

void WindowState::save() const {
  const auto directory = paths::stateDirectory();
  if (!directory || !paths::createPrivateDirectory(*directory)) return;
  QSettings file(stateFile(*directory), QSettings::IniFormat);
  file.setValue(kGeometry, geometry);
  file.setValue(kExpanded, expanded);
}

}  // namespace vantrel
