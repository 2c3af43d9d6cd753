#include "today/TodayWindow.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QTimer>
#include <algorithm>
#include <chrono>

#include "platform/Bundle.h"
#include "platform/qt/QtTextMeasurer.h"
#include "store/Database.h"
#include "today/AppIcon.h"

namespace vantrel {

namespace {

constexpr int kAnimationMilliseconds = 160;
constexpr int kSmallestWidth = 300;
constexpr std::chrono::seconds kCopiedNotice{4};

std::string text(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Today");
}

std::filesystem::path storePath() {
  return Database::sharedInstance().groupStoreURL().value_or(std::filesystem::path());
}

bool isDark(const QColor& color) {
  return color.lightnessF() < 0.5;
}

}  // namespace

TodayWindow::TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, const Wishes& wishes)
    : measurer_(measurer),
      opener_(opener),
      wishes_(wishes),
      state_(WindowState::load()),
      triggers_(storePath()),
      host_(1, [this](const std::string& link) { openLink(link); }),
      card_(new CardWidget(host_, measurer, this)) {
  setWindowTitle(QString::fromStdString(text("today_window_title")));
  setWindowIcon(appIcon());
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setMinimumWidth(kSmallestWidth);
  setWidget(card_);
  if (wishes.expanded) state_.expanded = *wishes.expanded;
  resize(static_cast<int>(CardLayout::kUsualCardWidth + 2 * CardLayout::kMargin), 1);
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
  connect(card_, &CardWidget::toggled, this, &TodayWindow::toggleMode);
  connect(card_, &CardWidget::barActed, this, &TodayWindow::actOnBar);
  connect(card_, &CardWidget::settled, this, &TodayWindow::fitHeight);
  connect(card_, &CardWidget::naturalHeightChanged, this, [this] {
    // A growing card needs the room now, a shrinking one gives it back in the end.
    if (card_->naturalHeight() > height()) fitHeight();
  });
  connect(&desktop_, &DesktopSettings::answered, this, &TodayWindow::ready);
  connect(&desktop_, &DesktopSettings::changed, this, &TodayWindow::takeDesktopSettings);
  connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, renew);
  connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this, &QWidget::close);
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
  if (opener_.open(link) != LinkOpener::Result::kOpened) {
    linkToCopy_ = link;
    linkBar_ = CardContent::Bar{text("today_no_handler"), text("today_copy_link")};
  }
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

void TodayWindow::toggleMode() {
  state_.expanded = !state_.expanded;
  host_.setMode(state_.expanded ? WidgetDisplayMode::kExpanded : WidgetDisplayMode::kCompact);
  card_->showLife();
}

void TodayWindow::takeDesktopSettings() {
  const bool dark = wishes_.dark.value_or(cardIsDark(desktop_.isDark()));
  const Theme theme = Theme::forStyle(dark);
  // The desktop's own colour, where it has taken part in the change of scheme.
  const QColor own = QGuiApplication::palette().color(QPalette::Window);
  card_->setTheme(theme, isDark(own) == dark ? own : theme.behind);
  card_->setAnimationDuration(desktop_.reducesMotion() ? 0 : kAnimationMilliseconds);
  if (host_.isAlive() && desktop_.textScale() == measurer_.scale()) return;
  measurer_.setScale(desktop_.textScale());
  host_.setTextScale(desktop_.textScale());
  beginLife();
}

void TodayWindow::fitHeight() {
  if (isMaximized() || isFullScreen()) return fitCard();
  int wanted = card_->naturalHeight();
  if (const QScreen* place = screen()) wanted = std::min(wanted, place->availableSize().height());
  resize(width(), wanted);
  fitCard();
}

/// The card fills the window, and is scrolled where it needs more.
void TodayWindow::fitCard() {
  const QSize room = viewport()->size();
  card_->resize(room.width(), std::max(room.height(), card_->naturalHeight()));
}

void TodayWindow::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  fitCard();
}

void TodayWindow::changeEvent(QEvent* event) {
  QScrollArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
    takeDesktopSettings();
  }
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
  QScrollArea::closeEvent(event);
}

}  // namespace vantrel
