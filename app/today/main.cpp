#include <unistd.h>

#include <QApplication>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "common/ProgramStart.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtTextMeasurer.h"
#include "platform/system/Device.h"
#include "store/Database.h"
#include "today/AppId.h"
#include "today/InterfaceText.h"
#include "today/Options.h"
#include "today/Render.h"
#include "today/TodayProgram.h"
#include "today/desktop/ApplicationService.h"
#include "today/desktop/Autostart.h"
#include "today/desktop/DesktopNotice.h"
#include "today/reminders/ReminderSetting.h"
#include "today/sheet/PlanOpening.h"

namespace vantrel {

namespace {

/// How long a process that the bus has started waits for a request.
constexpr std::chrono::seconds kIdle{30};

/// Environment variable of a process that replaces itself: "+" if the widget's window was open,
/// then the link of the open plan, if any.
constexpr const char* kRestarted = "VANTREL_TODAY_RESTARTED";

/// Qt aborts if there is no display; this explains what to do instead.
void explainMissingDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                           const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  logLine(
      "vantrel-today: no display: draw into a file with --render FILE.png, or use: vantrel today");
  std::_Exit(kExitUnavailable);
}

/// Restores the windows that were open before a restart. Returns the link of the plan that was open
/// beside the widget's window.
std::string takeRestart(Options& options) {
  const char* value = std::getenv(kRestarted);
  if (!value) return {};
  std::string shown = value;
  unsetenv(kRestarted);
  options.expanded = false;
  // Without windows it was a service for reminders.
  options.service = shown.empty();
  options.link.reset();
  if (shown.empty()) return {};
  if (shown.starts_with('+')) return shown.substr(1);
  options.link = std::move(shown);
  return {};
}

void describeApplication() {
  QApplication::setApplicationName(QStringLiteral("vantrel-today"));
  QApplication::setApplicationDisplayName(QStringLiteral("Vantrel"));
  QGuiApplication::setDesktopFileName(QString::fromLatin1(kApplicationId));
  QGuiApplication::setLayoutDirection(interfaceIsRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
}

void showAtStart(TodayProgram& program, const Options& options, const std::string& restartedLink) {
  if (options.service) {
    // Closing a plan's sheet must not end the reminders.
    QApplication::setQuitOnLastWindowClosed(!program.hasReminders());
    return QTimer::singleShot(kIdle, &program, [&program] {
      const bool isIdle = QApplication::topLevelWidgets().isEmpty() && !program.hasReminders();
      if (isIdle) QApplication::quit();
    });
  }
  if (options.link) {
    program.openLink(*options.link);
    return;
  }
  program.activate();
  if (!restartedLink.empty()) program.openLink(restartedLink);
}

int showWindow(int argc, char** argv, Options options) {
  const std::string restartedLink = takeRestart(options);
  // A link without a plan is reported before anything opens, in one line.
  if (options.link) {
    setLogsEnabled(false);
    const auto plan = planOfLink(*options.link);
    setLogsEnabled(true);
    if (!plan) {
      logLine("vantrel-today: " + plan.error().localizedDescription);
      showNotice(messageForLinkError(plan.error()));
      // Does not run Qt's destructors: the thread of the bus may still be running and would log a
      // warning.
      std::_Exit(exitCodeForError(plan.error()));
    }
  }
  const auto usualHandler = qInstallMessageHandler(explainMissingDisplay);
  QApplication application(argc, argv);
  qInstallMessageHandler(usualHandler);
  describeApplication();
  const auto measurer = std::make_shared<QtTextMeasurer>();
  TextMeasurer::install(measurer);
  MainQueue::install(std::make_shared<QtMainQueue>());

  TodayProgram program(*measurer, options);
  QObject::connect(
      &program, &TodayProgram::restartRequested, [argv](bool window, const std::string& link) {
        setenv(kRestarted, ((window ? "+" : "") + link).c_str(), 1);
        ::execv("/proc/self/exe", argv);
        logLine("vantrel-today: cannot start again; close the window and open it anew");
      });
  const auto store = Database::sharedInstance().groupStoreURL();
  ApplicationService service(
      store ? store->string() : std::string(),
      {.activate = [&program] { program.activate(); },
       .open = [&program](const std::string& link) { return program.openLink(link); },
       .perform = [&program](const QString& action) { return program.perform(action); }});
  // A window with options of its own is not shared with other starts.
  if (!options.dark && options.systemVersion.empty()) {
    const QString action = options.expanded ? QStringLiteral("show-more") : QString();
    const auto role = service.start(options.link.value_or(""), action);
    if (role == ApplicationService::Role::kServed) return kExitDone;
  }
  showAtStart(program, options, restartedLink);
  return QApplication::exec();
}

int setReminders(int argc, char** argv, const std::vector<std::chrono::minutes>& leadTimes) {
  if (const auto stored = storeLeadTimes(leadTimes); !stored) {
    logLine("vantrel-today: settings: " + stored.error().localizedDescription);
    return kExitInputOutput;
  }
  const QCoreApplication application(argc, argv);
  const auto store = Database::sharedInstance().groupStoreURL();
  const ApplicationService service(store ? store->string() : std::string(), {});
  const bool isRunning = service.ask(QString::fromLatin1(kUpdateReminders));
  if (!leadTimes.empty() && !isRunning && !isAutostartOn()) {
    logLine(
        "vantrel-today: reminders appear only while vantrel-today runs: open it, or use "
        "--autostart on");
  }
  return kExitDone;
}

int run(int argc, char** argv) {
  Options options;
  if (const auto code = Options::parse(argc, argv, options)) return *code;
  if (const auto sane = checkEnvironment(); !sane) {
    logLine("vantrel-today: " + sane.error().localizedDescription);
    return exitCodeForError(sane.error());
  }
  if (options.autostart) return setAutostart(*options.autostart);
  if (options.reminders) return setReminders(argc, argv, *options.reminders);
  if (!options.systemVersion.empty())
    Device::currentDevice().setSystemVersion(options.systemVersion);
  if (!options.renderFile.empty()) return render(argc, argv, options);
  return showWindow(argc, argv, std::move(options));
}

}  // namespace

}  // namespace vantrel

int main(int argc, char** argv) {
  vantrel::exitWhenOutOfMemory("vantrel-today");
  return vantrel::run(argc, argv);
}
