#include "today/TodayWindow.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QShortcut>
#include <QTimer>
#include <chrono>

#include "platform/Bundle.h"
#include "platform/qt/QtTextMeasurer.h"
#include "store/Database.h"

namespace vantrel {

namespace {

constexpr int kAnimationMilliseconds = 160;
constexpr std::chrono::seconds kCopiedNotice{4};

std::string text(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Today");
}

std::filesystem::path storePath() {
  return Database::sharedInstance().groupStoreURL().value_or(std::filesystem::path());
}

}  // namespace

TodayWindow::TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, const Wishes& wishes)
    : CardWindow(measurer, wishes.dark),
      opener_(opener),
      state_(WindowState::load()),
      triggers_(storePath()),
      host_(1, [this](const std::string& link) { openLink(link); }),
      card_(new CardWidget(host_, measurer, this)) {
  setWindowTitle(QString::fromStdString(text("today_window_title")));
  setWidget(card_);
  if (wishes.expanded) state_.expanded = *wishes.expanded;
  restoreGeometry(state_.geometry);
  card_->resize(size());
  connectTriggers();
  takeDesktopSettings();
  fitHeight();
}

void TodayWindow::connectTriggers() {
  const auto renew = [this] { beginLife(); };
  connect(&triggers_, &RefreshTriggers::clockMoved, this, renew);
  connect(&triggers_, &RefreshTriggers::storeReplaced, this, &TodayWindow::restart);
  connect(&triggers_, &RefreshTriggers::timeZoneChanged, this, &TodayWindow::restart);
  connect(&triggers_, &RefreshTriggers::storeChanged, this, [this] {
    // A store that failed to open stays closed for this process.
    probe_.failedToOpen() ? restart() : beginLife();
  });
  connect(card_, &CardWidget::rowTouchFinished, this, renew);
  connect(card_, &CardWidget::toggled, this, [this] { setExpanded(!state_.expanded); });
  connect(card_, &CardWidget::barActed, this, &TodayWindow::actOnBar);
  connect(card_, &CardWidget::settled, this, &TodayWindow::fitHeight);
  connect(card_, &CardWidget::naturalHeightChanged, this, [this] {
    // A growing card needs the room now, a shrinking one gives it back in the end.
    if (card_->naturalHeight() > height()) fitHeight();
  });
  connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, renew);
}

void TodayWindow::beginLife() {
  if (card_->isTouched()) return;
  const auto problem = probe_.problem();
  triggers_.ignoreStoreChangesSoFar();
  storeBar_.reset();
  if (problem) showStoreProblem(*problem);
  // Rows that are there are better than none: they stay until the store can be read again.
  if (!problem || !host_.isAlive()) {
    host_.beginLife(cardWidth(card_->width()),
                    state_.expanded ? WidgetDisplayMode::kExpanded : WidgetDisplayMode::kCompact);
    card_->showLife();
  }
  showBar();
}

void TodayWindow::showStoreProblem(const Error& problem) {
  storeBar_ = CardContent::Bar{problem.localizedDescription, text("today_retry")};
}

void TodayWindow::openLink(const std::string& link) {
  linkBar_.reset();
  const auto result = opener_.open(link);
  if (result == LinkOpener::Result::kNoPlan) return tell(text("today_link_plan_missing"));
  if (result != LinkOpener::Result::kOpened) {
    linkToCopy_ = link;
    linkBar_ = CardContent::Bar{text("today_no_handler"), text("today_copy_link")};
  }
  showBar();
}

void TodayWindow::tell(const std::string& message) {
  linkBar_ = CardContent::Bar{message, {}};
  showBar();
}

void TodayWindow::showBar() {
  card_->setBar(storeBar_ ? storeBar_ : linkBar_);
}

void TodayWindow::actOnBar() {
  if (storeBar_) return restart();
  QGuiApplication::clipboard()->setText(QString::fromStdString(linkToCopy_));
  linkBar_ = CardContent::Bar{text("today_link_copied"), {}};
  showBar();
  QTimer::singleShot(kCopiedNotice, this, [this, shown = linkBar_->text] {
    // Rows must not move under a finger.
    if (!linkBar_ || linkBar_->text != shown || card_->isTouched()) return;
    linkBar_.reset();
    showBar();
  });
}

void TodayWindow::setExpanded(bool expanded) {
  if (state_.expanded == expanded) return;
  state_.expanded = expanded;
  host_.setMode(state_.expanded ? WidgetDisplayMode::kExpanded : WidgetDisplayMode::kCompact);
  card_->showLife();
}

void TodayWindow::applySettings(const Theme& theme, const QColor& background, bool newTextScale) {
  card_->setTheme(theme, background);
  card_->setAnimationDuration(desktop().reducesMotion() ? 0 : kAnimationMilliseconds);
  if (!newTextScale) return;
  host_.setTextScale(measurer().scale());
  beginLife();
}

void TodayWindow::saveState() const {
  WindowState state = state_;
  state.geometry = saveGeometry();
  state.save();
}

void TodayWindow::restart() {
  saveState();
  emit restartRequested();
}

void TodayWindow::closeEvent(QCloseEvent* event) {
  saveState();
  CardWindow::closeEvent(event);
}

}  // namespace vantrel
