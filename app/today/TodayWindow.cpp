#include "today/TodayWindow.h"

#include <QCloseEvent>

#include "platform/qt/QtTextMeasurer.h"
#include "store/PlanLink.h"
#include "today/InterfaceText.h"
#include "today/StoreProblem.h"
#include "today/card/TouchButton.h"
#include "today/sheet/PlanSheetContent.h"

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
  for (std::size_t row = 0; row < widget_->rowButtons().size(); ++row) addRowMenu(row);
  setCard(*widget_);
}

void TodayWindow::addRowMenu(std::size_t row) {
  TouchButton* button = widget_->rowButtons()[row];
  const auto add = [&](std::string_view text, auto act) {
    auto* action = new QAction(QString::fromStdString(localized(text)), button);
    connect(action, &QAction::triggered, this, [this, row, act] {
      if (const auto plan = host_.plan(row)) act(*plan);
    });
    button->addAction(action);
    return action;
  };
  add("today_open", [button](const Planning& /*plan*/) { button->click(); });
  add("today_copy_link", [this](const Planning& plan) { copyLink(deepLink(plan)); });
  RowMenu menu{};
  menu.copyCoordinates = add("today_copy_coordinates", [this](const Planning& plan) {
    if (const auto place = placeOfPlan(plan)) copy(place->coordinates, "today_coordinates_copied");
  });
  menu.showOnMap = add("today_show_on_map", [this](const Planning& plan) {
    if (const auto place = placeOfPlan(plan)) openLink(place->geoLink, "today_no_map");
  });
  menus_.push_back(menu);
  button->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void TodayWindow::showLife() {
  widget_->showLife();
  for (std::size_t row = 0; row < menus_.size(); ++row) {
    const auto plan = host_.plan(row);
    const bool hasPlace = plan && placeOfPlan(*plan);
    menus_[row].copyCoordinates->setEnabled(hasPlace);
    menus_[row].showOnMap->setEnabled(hasPlace);
  }
}

void TodayWindow::refresh() {
  if (widget_->isTouched()) return;
  const auto problem = storeProblem();
  ignoreStoreChangesSoFar();
  // Keep the rows until the store can be read again.
  if (!problem || !host_.isAlive()) {
    host_.beginLife(cardWidth(widget_->width()), modeFor(state_));
    showLife();
  }
  setProblem(problem);
}

void TodayWindow::setExpanded(bool expanded) {
  if (state_.expanded == expanded) return;
  state_.expanded = expanded;
  host_.setMode(modeFor(state_));
  showLife();
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
