#include "today/Render.h"

#include <QBuffer>
#include <QByteArray>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "common/OutputFile.h"
#include "common/StoreAccess.h"
#include "platform/qt/QtTextMeasurer.h"
#include "today/StoreProblem.h"
#include "today/WidgetHost.h"
#include "today/card/CardPainter.h"
#include "today/sheet/PlanOpening.h"
#include "today/sheet/PlanSheetContent.h"

namespace vantrel {

namespace {

int fail(int code, const std::string& message) {
  setLogsEnabled(true);
  logLine("vantrel-today: " + message);
  return code;
}

int fail(const Error& error) {
  return fail(exitCodeForError(error), error.localizedDescription);
}

/// Makes the picture independent of the desktop's settings.
void leaveDesktopOut() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  for (const char* variable :
       {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_FONT_DPI", "QT_QPA_PLATFORMTHEME"}) {
    qunsetenv(variable);
  }
  // Warnings of Qt about a plain environment do not concern the caller.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) logLine(message.toStdString());
  });
}

/// Draws the sheet of `plan`, or the widget if it is null.
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

int write(const QImage& image, const std::string& name) {
  QByteArray picture;
  QBuffer buffer(&picture);
  if (!image.save(&buffer, "PNG")) {
    return fail(kExitInternal, "the picture cannot be encoded");
  }
  const std::string_view bytes(picture.constData(), static_cast<std::size_t>(picture.size()));
  if (name == "-") {
    const bool isWritten =
        std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && !std::fflush(stdout);
    return isWritten
               ? kExitDone
               : fail(kExitInputOutput, std::string("standard output: ") + std::strerror(errno));
  }
  OutputFile file(name);
  const auto written = file.open().and_then([&] {
    file.write(bytes);
    // Syncing to the disk would take longer than drawing the picture again.
    return file.finish(false);
  });
  return written ? kExitDone : fail(written.error());
}

}  // namespace

int render(int argc, char** argv, const Options& options) {
  // Errors are reported once, by fail().
  setLogsEnabled(false);
  std::shared_ptr<Planning> plan;
  if (options.link) {
    auto found = planOfLink(*options.link);
    if (!found) return fail(found.error());
    plan = *found;
  } else if (const auto store = existingStore(); !store) {
    return fail(store.error());
  } else if (const auto problem = storeProblem()) {
    return fail(*problem);
  }
  leaveDesktopOut();
  const QGuiApplication application(argc, argv);
  const auto measurer = std::make_shared<QtTextMeasurer>();
  TextMeasurer::install(measurer);
  const QImage image = paint(options, plan.get(), *measurer);
  if (image.isNull()) return fail(kExitUsage, "a picture of that size cannot be drawn");
  return write(image, options.renderFile);
}

}  // namespace vantrel
