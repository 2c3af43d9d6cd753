#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <memory>

#include "base/Log.h"
#include "cli/ExitCode.h"
#include "platform/Device.h"
#include "platform/Locale.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTextMeasurer.h"
#include "today/Options.h"
#include "today/Render.h"
#include "today/TodayWindow.h"

namespace vantrel {

namespace {

/// How long the first picture waits for the desktop to tell whether it is to be dark.
constexpr std::chrono::milliseconds kPatience{200};

constexpr const char* kRestarted = "VANTREL_TODAY_RESTARTED";

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value;
}

/// The toolkit aborts when it finds no display; a person is told what to do instead.
void explainMissingDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                           const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  logLine(
      "vantrel-today: no display: draw into a file with --render FILE.png, or use: vantrel today");
  std::_Exit(cli::kExitUnavailable);
}

int showWindow(int argc, char** argv, const Options& options) {
  const auto usualHandler = qInstallMessageHandler(explainMissingDisplay);
  QApplication application(argc, argv);
  qInstallMessageHandler(usualHandler);
  QApplication::setApplicationName(QStringLiteral("vantrel-today"));
  QApplication::setApplicationDisplayName(QStringLiteral("Vantrel"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.vantrel.Today"));
  const Locale language(Locale::preferredLanguages().front());
  QGuiApplication::setLayoutDirection(language.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  const auto measurer = std::make_shared<QtTextMeasurer>();
  TextMeasurer::install(measurer);
  MainQueue::install(std::make_shared<QtMainQueue>());

  LinkOpener opener;
  TodayWindow::Wishes wishes;
  wishes.dark = options.dark;
  // Started again in place, the window comes back as it was left.
  if (options.expanded && !isSet(kRestarted)) wishes.expanded = true;
  unsetenv(kRestarted);
  TodayWindow window(*measurer, opener, wishes);
  QObject::connect(&window, &TodayWindow::restartRequested, [argv] {
    setenv(kRestarted, "1", 1);
    ::execv("/proc/self/exe", argv);
    logLine("vantrel-today: cannot start again; close the window and open it anew");
  });
  QObject::connect(&window, &TodayWindow::ready, &window, &QWidget::show);
  QTimer::singleShot(kPatience, &window, &QWidget::show);
  return QApplication::exec();
}

}  // namespace

}  // namespace vantrel

int main(int argc, char** argv) {
  vantrel::Options options;
  if (const auto code = vantrel::Options::parse(argc, argv, options)) return *code;
  if (!options.systemVersion.empty()) {
    vantrel::Device::currentDevice().setSystemVersion(options.systemVersion);
  }
  return options.renderFile.empty() ? vantrel::showWindow(argc, argv, options)
                                    : vantrel::render(argc, argv, options);
}
