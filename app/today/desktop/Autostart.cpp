#include "today/desktop/Autostart.h"

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "platform/system/Paths.h"
#include "today/AppId.h"

namespace vantrel {

namespace {

namespace fs = std::filesystem;

int fail(int code, const std::string& what, const std::string& why) {
  logLine("vantrel-today: " + what + ": " + why);
  return code;
}

/// Returns a quoted value of Exec: special characters are escaped twice, for the argument and for
/// the file.
std::string quoted(const std::string& argument) {
  std::string result = "\"";
  for (const char c : argument) {
    if (c == '%') result += '%';
    if (c == '\\') result += "\\\\\\";
    if (c == '"' || c == '`' || c == '$') result += "\\\\";
    result += c;
  }
  return result + "\"";
}

/// Returns the program's name if PATH finds this program by it: the entry then survives a move.
std::string command(const fs::path& program) {
  const QString found = QStandardPaths::findExecutable(QStringLiteral("vantrel-today"));
  std::error_code error;
  if (!found.isEmpty() && fs::equivalent(found.toStdString(), program, error)) {
    return "vantrel-today";
  }
  return quoted(program.string());
}

int turnOn(const fs::path& entry) {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (error) return fail(kExitInternal, "this program's own path", error.message());
  if (!paths::createPrivateDirectory(entry.parent_path())) {
    return fail(kExitCannotCreate, entry.parent_path().string(), "cannot be made");
  }
  const std::string text =
      "[Desktop Entry]\nVersion=1.4\nType=Application\nName=Vantrel Today\nExec=" +
      command(program) + "\nIcon=" + kApplicationId + "\nX-GNOME-Autostart-enabled=true\n";
  QSaveFile file(QString::fromStdString(entry.string()));
  if (!file.open(QIODevice::WriteOnly)) {
    const auto code =
        file.error() == QFileDevice::PermissionsError ? kExitPermission : kExitCannotCreate;
    return fail(code, entry.string(), file.errorString().toStdString());
  }
  // Other users must not write what runs at login, whatever the umask.
  file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  file.write(QByteArray::fromStdString(text));
  if (file.commit()) return kExitDone;
  return fail(kExitInputOutput, entry.string(), file.errorString().toStdString());
}

int turnOff(const fs::path& entry) {
  std::error_code error;
  fs::remove(entry, error);
  if (!error) return kExitDone;
  const bool denied = error == std::errc::permission_denied;
  return fail(denied ? kExitPermission : kExitInputOutput, entry.string(), error.message());
}

std::optional<fs::path> autostartEntry() {
  const auto config = paths::configDirectory();
  if (!config) return std::nullopt;
  return config->parent_path() / "autostart" / (std::string(kApplicationId) + ".desktop");
}

}  // namespace

int setAutostart(bool on) {
  const auto entry = autostartEntry();
  if (!entry) return fail(kExitCannotCreate, "the autostart folder", "$HOME is not set");
  return on ? turnOn(*entry) : turnOff(*entry);
}

bool isAutostartOn() {
  std::error_code error;
  const auto entry = autostartEntry();
  return entry && fs::exists(*entry, error);
}

}  // namespace vantrel
