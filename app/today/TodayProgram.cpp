#include "today/TodayProgram.h"

#include <QTimer>
#include <chrono>

#include "base/Log.h"
#include "today/AppId.h"
#include "today/reminders/ReminderMenu.h"
#include "today/sheet/PlanOpening.h"

namespace vantrel {

namespace {

/// How long to wait for the desktop's colour scheme before the window is shown.
constexpr std::chrono::milliseconds kPatience{200};

}  // namespace

TodayProgram::TodayProgram(QtTextMeasurer& measurer, const Options& options)
    : measurer_(measurer),
      options_(options),
      opener_([this](const std::string& link) { return openLink(link); }),
      reminders_([this](const std::string& link) { openLink(link); }) {
  connect(&reminders_, &ReminderService::restartRequested, this, &TodayProgram::restart);
  reminders_.reload();
}

TodayProgram::~TodayProgram() {
  delete window_.data();
  delete sheet_.data();
}

TodayWindow& TodayProgram::window() {
  if (window_) return *window_;
  window_ = new TodayWindow(measurer_, opener_, options_.dark, options_.expanded);
  makeOwn(*window_);
  auto* menu = new ReminderMenu(window_);
  connect(menu, &ReminderMenu::changed, &reminders_, &ReminderService::reload);
  connect(menu, &ReminderMenu::failed, window_, &TodayWindow::showMessage);
  window_->addAction(menu->menuAction());
  window_->setContextMenuPolicy(Qt::ActionsContextMenu);
  return *window_;
}

void TodayProgram::makeOwn(CardWindow& window) {
  window.setAttribute(Qt::WA_DeleteOnClose);
  connect(&window, &CardWindow::restartRequested, this, &TodayProgram::restart);
}

void TodayProgram::restart() {
  if (window_) window_->saveState();
  emit restartRequested(window_ != nullptr, sheet_ ? sheet_->link() : std::string());
}

void TodayProgram::bringToFront(CardWindow& window) {
  const auto show = [&window] {
    // Restores a minimized window.
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    // Activation tokens are single-use and must not be inherited by child processes.
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
  };
  if (window.isVisible() || window.isReady()) return show();
  connect(&window, &CardWindow::ready, &window, show);
  QTimer::singleShot(kPatience, &window, [&window, show] {
    if (!window.isVisible()) show();
  });
}

void TodayProgram::activate() {
  bringToFront(window());
}

bool TodayProgram::openLink(const std::string& link) {
  const auto plan = planOfLink(link);
  if (!plan) {
    logLine("vantrel-today: " + plan.error().localizedDescription);
    if (window_) window_->showMessage(messageForLinkError(plan.error()));
    return false;
  }
  if (!sheet_) {
    sheet_ = new PlanSheetWindow(measurer_, opener_, options_.dark);
    makeOwn(*sheet_);
    // The row that was opened still has the keyboard focus of its window.
    connect(sheet_, &QObject::destroyed, this, [this] {
      if (window_ && window_->isVisible()) window_->activateWindow();
    });
  }
  sheet_->showPlan(**plan);
  bringToFront(*sheet_);
  return true;
}

bool TodayProgram::perform(const QString& action) {
  if (action == QLatin1String(kUpdateReminders)) {
    reminders_.reload();
    return true;
  }
  const bool more = action == QLatin1String("show-more");
  if (more || action == QLatin1String("show-less")) {
    window().setExpanded(more);
  } else if (action == QLatin1String("refresh")) {
    window().refresh();
  } else {
    return false;
  }
  activate();
  return true;
}

}  // namespace vantrel
