#include "today/card/CardWindow.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QTimer>
#include <algorithm>
#include <chrono>

#include "common/ExitCode.h"
#include "common/Staleness.h"
#include "platform/qt/QtTextMeasurer.h"
#include "store/Database.h"
#include "today/InterfaceText.h"
#include "today/StoreProblem.h"
#include "today/card/AppIcon.h"

namespace vantrel {

namespace {

constexpr int kSmallestWidth = 300;
constexpr std::chrono::seconds kCopiedNotice{4};

std::filesystem::path storePath() {
  return Database::sharedInstance().groupStoreURL().value_or(std::filesystem::path());
}

bool isDark(const QColor& color) {
  return color.lightnessF() < 0.5;
}

/// The role of a window: screen readers do not treat a scroll area as one.
QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object) {
  auto* window = qobject_cast<CardWindow*>(object);
  return window ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

}  // namespace

CardWindow::CardWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark)
    : measurer_(measurer), opener_(opener), wantsDark_(dark), triggers_(storePath()) {
  QAccessible::installFactory(makeAccessible);
  setWindowIcon(appIcon());
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setMinimumWidth(kSmallestWidth);
  resize(static_cast<int>(CardLayout::kUsualCardWidth + 2 * CardLayout::kMargin), 1);
  connect(&desktop_, &DesktopSettings::answered, this, [this] {
    isReady_ = true;
    emit ready();
  });
  connect(&desktop_, &DesktopSettings::changed, this, &CardWindow::takeDesktopSettings);
  connectTriggers();
  connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this, &QWidget::close);
}

void CardWindow::connectTriggers() {
  connect(&triggers_, &RefreshTriggers::clockMoved, this, &CardWindow::refresh);
  connect(&triggers_, &RefreshTriggers::storeReplaced, this, &CardWindow::restartRequested);
  connect(&triggers_, &RefreshTriggers::timeZoneChanged, this, &CardWindow::restartRequested);
  const auto readAgain = [this] {
    if (!storeFailedToOpen()) return refresh();
    emit restartRequested();
  };
  connect(&triggers_, &RefreshTriggers::storeChanged, this, readAgain);
  // The end of a lock does not appear as a change of the store.
  busyStore_.setSingleShot(true);
  busyStore_.setInterval(static_cast<int>(kBusyStoreSeconds * 1000));
  connect(&busyStore_, &QTimer::timeout, this, readAgain);
  connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this,
          &CardWindow::refresh);
}

void CardWindow::setCard(CardWidget& card) {
  card_ = &card;
  setWidget(card_);
  card_->resize(size());
  connect(card_, &CardWidget::barPressed, this, &CardWindow::actOnBar);
  connect(card_, &CardWidget::naturalHeightChanged, this, &CardWindow::fitHeight);
  takeDesktopSettings();
}

void CardWindow::takeDesktopSettings() {
  const bool dark = wantsDark_.value_or(cardIsDark(desktop_.isDark()));
  const Theme theme = Theme::forStyle(dark, desktop_.wantsContrast());
  // The desktop's own colour if it has followed the change of scheme.
  const QColor own = QGuiApplication::palette().color(QPalette::Window);
  card_->setTheme(theme, isDark(own) == dark ? own : theme.behind);
  // All windows share the measurer: another one may have changed it.
  measurer_.setScale(desktop_.textScale());
  if (textScale_ == measurer_.scale()) return;
  textScale_ = measurer_.scale();
  textScaleChanged();
}

void CardWindow::openLink(const std::string& link, std::string_view noHandler) {
  using Result = LinkOpener::Result;
  notice_.reset();
  const auto result = opener_.open(link);
  if (result != Result::kOpened) {
    linkToCopy_ = link;
    // While opening, the program may have given a reason by `showMessage`.
    const std::string reason = notice_                     ? notice_->text
                               : result == Result::kNoPlan ? localized("today_link_plan_missing")
                                                           : localized(noHandler);
    notice_ = CardContent::Bar{reason, localized("today_copy_link")};
  }
  showBar();
}

void CardWindow::showMessage(const std::string& message) {
  notice_ = CardContent::Bar{message, {}};
  showBar();
}

void CardWindow::copy(const std::string& text, std::string_view copied) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
  const std::string message = localized(copied);
  showMessage(message);
  QTimer::singleShot(kCopiedNotice, this, [this, message] {
    // Rows must not move while they are touched.
    if (!notice_ || notice_->text != message || card_->isTouched()) return;
    notice_.reset();
    showBar();
  });
}

void CardWindow::setProblem(const std::optional<Error>& problem) {
  problem_.reset();
  if (problem) problem_ = CardContent::Bar{problem->localizedDescription, localized("today_retry")};
  if (problem && exitCodeForError(*problem) == kExitTryAgain) busyStore_.start();
  showBar();
}

void CardWindow::showBar() {
  card_->setBar(problem_ ? problem_ : notice_);
}

void CardWindow::actOnBar() {
  if (!problem_) return copyLink(linkToCopy_);
  emit restartRequested();
}

void CardWindow::fitHeight() {
  if (isMaximized() || isFullScreen()) return fitCard();
  int wanted = card_->naturalHeight();
  if (const QScreen* place = screen()) wanted = std::min(wanted, place->availableSize().height());
  resize(width(), wanted);
  fitCard();
}

/// Fits the card to the window, scrolled if it is larger.
void CardWindow::fitCard() {
  if (!card_) return;
  const QSize room = viewport()->size();
  card_->resize(room.width(), std::max(room.height(), card_->naturalHeight()));
}

void CardWindow::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  fitCard();
}

void CardWindow::changeEvent(QEvent* event) {
  QScrollArea::changeEvent(event);
  if (event->type() != QEvent::PaletteChange && event->type() != QEvent::FontChange) return;
  if (card_) takeDesktopSettings();
}

}  // namespace vantrel
