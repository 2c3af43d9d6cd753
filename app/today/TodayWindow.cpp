#include "today/TodayWindow.h"

#include <QCloseEvent>

#include "platform/qt/QtTextMeasurer.h"
#include "today/InterfaceText.h"
#include "today/StoreProblem.h"

namespace vantrel {

namespace {

constexpr int kAnimationMilliseconds = 160;

WidgetDisplayMode modeFor(const WindowState& state) {
  return state.expanded ? WidgetDisplayMode::kExpanded : WidgetDisplayMode::kCompact;
}

}  // namespace

TodayWindow::TodayWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark,
                         bool expanded)
    : CardWindow(measurer, opener, dark),
      state_(WindowState::load()),
      host_([this](const std::string& link) { openLink(link, "today_no_handler"); }),
      widget_(new TodayWidget(host_, measurer)) {
  setWindowTitle(QString::fromStdString(localized("today_window_title")));
  if (expanded) state_.expanded = true;
  restoreGeometry(state_.geometry);
  connect(widget_, &TodayWidget::rowTouchFinished, this, &TodayWindow::refresh);
  connect(widget_, &TodayWidget::actionPressed, this, [this] { setExpanded(!state_.expanded); });
  setCard(*widget_);
}

void TodayWindow::refresh() {
  if (widget_->isTouched()) return;
  const auto problem = storeProblem();
  ignoreStoreChangesSoFar();
  // Rows that are there are better than none: they stay until the store can be read again.
  if (!problem || !host_.isAlive()) {
    host_.beginLife(cardWidth(widget_->width()), modeFor(state_));
    widget_->showLife();
  }
  setProblem(problem);
}

void TodayWindow::setExpanded(bool expanded) {
  if (state_.expanded == expanded) return;
  state_.expanded = expanded;
  host_.setMode(modeFor(state_));
  widget_->showLife();
}

void TodayWindow::takeDesktopSettings() {
  widget_->setAnimationDuration(desktop().reducesMotion() ? 0 : kAnimationMilliseconds);
  CardWindow::takeDesktopSettings();
}

void TodayWindow::textScaleChanged() {
  host_.setTextScale(measurer().scale());
  refresh();
}

void TodayWindow::saveState() const {
  WindowState state = state_;
  state.geometry = saveGeometry();
  state.save();
}

void TodayWindow::closeEvent(QCloseEvent* event) {
  saveState();
  CardWindow::closeEvent(event);
}

}  // namespace vantrel
