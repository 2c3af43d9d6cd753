#include "today/Render.h"

#include <unistd.h>

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "base/Log.h"
#include "cli/ExitCode.h"
#include "platform/qt/QtTextMeasurer.h"
#include "today/CardPainter.h"
#include "today/PlanOpening.h"
#include "today/PlanSheetContent.h"
#include "today/StoreProblem.h"
#include "today/WidgetHost.h"

namespace vantrel {

namespace {

int fail(int code, const std::string& message) {
  setLogsEnabled(true);
  logLine("vantrel-today: " + message);
  return code;
}

int fail(const Error& error) {
  return fail(cli::exitCodeForError(error), error.localizedDescription);
}

/// A picture is the same on every machine that has the same fonts, whatever its desktop.
void leaveDesktopOut() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* variable :
       {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_QPA_PLATFORMTHEME"}) {
    qunsetenv(variable);
  }
  // What the toolkit misses in a plain environment is none of the caller's business.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) logLine(message.toStdString());
  });
}

/// Draws the sheet of a plan, or without one the widget.
QImage paint(const Options& options, const Planning* plan, const QtTextMeasurer& measurer) {
  const double width =
      options.width > 0 ? options.width : CardLayout::kUsualCardWidth + 2 * CardLayout::kMargin;
  CardContent content;
  WidgetHost host;
  if (plan) {
    PlanSheetContent(*plan).describe(content);
  } else {
    host.beginLife(cardWidth(width),
                   options.expanded ? WidgetDisplayMode::kExpanded : WidgetDisplayMode::kCompact);
    host.describe(content);
  }
  const CardLayout layout = CardLayout::make(content, width, measurer);
  const QSizeF size(width, options.height > 0 ? options.height : std::ceil(layout.pictureHeight()));
  const Theme theme = Theme::forStyle(options.dark.value_or(cardIsDark(false)));
  QImage image((size * options.scale).toSize(), QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.setDevicePixelRatio(options.scale);
  image.fill(theme.behind);
  QPainter painter(&image);
  CardPainter(measurer).paint(painter, size.toSize(), content, layout, theme);
  return image;
}

int writeInto(QFile& file, const QByteArray& picture, const std::string& name) {
  if (file.write(picture) == picture.size() && file.flush()) return cli::kExitDone;
  return fail(cli::kExitInputOutput, name + ": " + file.errorString().toStdString());
}

/// Puts the file in its place whole, or not at all. Not forced to the disk: a picture can be drawn
/// again, and waiting for the disk takes longer than drawing.
int replaceFile(const QByteArray& picture, const std::string& name) {
  std::error_code error;
  const auto canonical = std::filesystem::weakly_canonical(name, error);
  const std::filesystem::path target = error ? std::filesystem::path(name) : canonical;
  const std::string part = target.string() + ".part" + std::to_string(::getpid());
  QFile file(QString::fromStdString(part));
  if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
    return fail(cli::kExitCannotCreate, name + ": " + file.errorString().toStdString());
  }
  int result = writeInto(file, picture, name);
  file.close();
  if (result == cli::kExitDone) {
    std::filesystem::rename(part, target, error);
    if (error) result = fail(cli::kExitInputOutput, name + ": " + error.message());
  }
  if (result != cli::kExitDone) file.remove();
  return result;
}

int write(const QImage& image, const std::string& name) {
  QByteArray picture;
  QBuffer buffer(&picture);
  if (!image.save(&buffer, "PNG")) {
    return fail(cli::kExitInternal, "the picture cannot be encoded");
  }
  const QFileInfo existing(QString::fromStdString(name));
  QFile file(existing.filePath());
  if (name == "-") {
    file.open(stdout, QIODevice::WriteOnly);
    return writeInto(file, picture, "standard output");
  }
  // A device or a pipe is written to; to put a file in its place would be a bad surprise.
  if (!existing.exists() || existing.isFile()) return replaceFile(picture, name);
  if (file.open(QIODevice::WriteOnly)) return writeInto(file, picture, name);
  return fail(cli::kExitCannotCreate, name + ": " + file.errorString().toStdString());
}

}  // namespace

int render(int argc, char** argv, const Options& options) {
  // What goes wrong is told once, by the line that ends the program.
  setLogsEnabled(false);
  std::shared_ptr<Planning> plan;
  if (options.link) {
    auto found = planOfLink(*options.link);
    if (!found) return fail(found.error());
    plan = *found;
  } else if (const auto missing = missingStore()) {
    return fail(*missing);
  } else if (const auto problem = storeProblem()) {
    return fail(*problem);
  }
  leaveDesktopOut();
  const QGuiApplication application(argc, argv);
  const auto measurer = std::make_shared<QtTextMeasurer>();
  TextMeasurer::install(measurer);
  const QImage image = paint(options, plan.get(), *measurer);
  if (image.isNull()) return fail(cli::kExitUsage, "a picture of that size cannot be drawn");
  return write(image, options.renderFile);
}

}  // namespace vantrel
