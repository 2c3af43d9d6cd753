#include "today/desktop/SchemeHandler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>
#include <QTextStream>

namespace vantrel {

namespace {

QStringList applicationFolders() {
  QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
  for (QString& folder : folders) folder += QStringLiteral("/applications");
  return folders;
}

/// Returns the files by priority: the user's choice for this desktop, for all desktops, then the
/// system's.
QStringList associationFiles() {
  QStringList names;
  const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toLower();
  for (const auto& desktop : desktops.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
    names << desktop + QStringLiteral("-mimeapps.list");
  }
  names << QStringLiteral("mimeapps.list");
  QStringList files;
  const auto folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation) +
                       applicationFolders();
  for (const auto& folder : folders) {
    for (const auto& name : names) files << folder + QLatin1Char('/') + name;
  }
  return files;
}

bool isInstalled(const QString& desktopFile) {
  if (desktopFile.isEmpty() || desktopFile.contains(QLatin1Char('/'))) return false;
  const auto folders = applicationFolders();
  for (const auto& folder : folders) {
    // A dash in the name may mean a subfolder.
    QString inSubfolder = desktopFile;
    inSubfolder.replace(inSubfolder.indexOf(QLatin1Char('-')), 1, QLatin1Char('/'));
    const QDir directory(folder);
    if (directory.exists(desktopFile) ||
        (desktopFile.contains(QLatin1Char('-')) && directory.exists(inSubfolder))) {
      return true;
    }
  }
  return false;
}

/// Returns the value of a key in a group of a key file. QSettings would read the ";" of a list as a
/// comment.
QString valueInKeyFile(const QString& name, const QString& group, const QString& key) {
  QFile file(name);
  // Opening a FIFO would block.
  if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) return {};
  bool inGroup = false;
  QTextStream stream(&file);
  for (QString line; stream.readLineInto(&line);) {
    if (line.startsWith(QLatin1Char('['))) {
      inGroup = line.trimmed() == QLatin1Char('[') + group + QLatin1Char(']');
    } else if (inGroup && line.section(QLatin1Char('='), 0, 0).trimmed() == key) {
      return line.section(QLatin1Char('='), 1);
    }
  }
  return {};
}

/// Returns the first installed application for the type in that group of the file.
QString firstListed(const QString& file, const QString& group, const QString& type) {
  const auto names = valueInKeyFile(file, group, type).split(QLatin1Char(';'), Qt::SkipEmptyParts);
  for (const auto& name : names) {
    if (isInstalled(name.trimmed())) return name.trimmed();
  }
  return {};
}

}  // namespace

QString handlerForScheme(const QString& scheme) {
  const QString type = QStringLiteral("x-scheme-handler/") + scheme;
  const auto files = associationFiles();
  for (const auto& group :
       {QStringLiteral("Default Applications"), QStringLiteral("Added Associations")}) {
    for (const auto& file : files) {
      if (auto handler = firstListed(file, group, type); !handler.isEmpty()) return handler;
    }
  }
  // Without a choice the desktop uses an application that declares the scheme.
  const auto folders = applicationFolders();
  for (const auto& folder : folders) {
    auto handler =
        firstListed(folder + QStringLiteral("/mimeinfo.cache"), QStringLiteral("MIME Cache"), type);
    if (!handler.isEmpty()) return handler;
  }
  return {};
}

}  // namespace vantrel
