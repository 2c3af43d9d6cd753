#include "today/sheet/PlanSheetWindow.h"

#include <QShortcut>
#include <utility>

#include "platform/qt/QtParagraph.h"
#include "today/InterfaceText.h"
#include "today/card/TouchButton.h"
#include "today/sheet/PlanOpening.h"

namespace vantrel {

PlanSheetWindow::PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener,
                                 std::optional<bool> dark)
    : CardWindow(measurer, opener, dark) {
  auto* card = new CardWidget(measurer, this);
  placeButton_ = card->addRow();
  placeButton_->setAccessibleName(QString::fromStdString(localized("today_sheet_place")));
  connect(card, &CardWidget::actionPressed, this, [this] { copyLink(link_); });
  addMenuAction("today_copy_link", QKeySequence::Copy, [this] { copyLink(link_); });
  copyCoordinates_ = addMenuAction("today_copy_coordinates", QKeySequence("Ctrl+Shift+C"), [this] {
    copy(place_->coordinates, "today_coordinates_copied");
  });
  showOnMap_ = addMenuAction("today_show_on_map", QKeySequence("Ctrl+M"),
                             [this] { openLink(place_->geoLink, "today_no_map"); });
  connect(placeButton_, &TouchButton::touchEnded, showOnMap_, &QAction::trigger);
  addMenuAction("today_previous_plan", QKeySequence("Alt+Left"),
                [this] { showNeighbour(Direction::kPrevious); });
  addMenuAction("today_next_plan", QKeySequence("Alt+Right"),
                [this] { showNeighbour(Direction::kNext); });
  setContextMenuPolicy(Qt::ActionsContextMenu);
  connect(new QShortcut(QKeySequence::Cancel, this), &QShortcut::activated, this, &QWidget::close);
  setCard(*card);
}

QAction* PlanSheetWindow::addMenuAction(std::string_view text, const QKeySequence& key,
                                        const std::function<void()>& act) {
  auto* action = new QAction(QString::fromStdString(localized(text)), this);
  action->setShortcut(key);
  action->setShortcutVisibleInContextMenu(true);
  connect(action, &QAction::triggered, this, act);
  addAction(action);
  return action;
}

void PlanSheetWindow::showNeighbour(Direction direction) {
  const auto plan = planOfLink(link_);
  if (!plan) return showMessage(messageForLinkError(plan.error()));
  if (const auto neighbour = neighbourOfPlan(**plan, direction)) showPlan(*neighbour);
}

void PlanSheetWindow::showPlan(const Planning& plan) {
  PlanSheetContent sheet(plan);
  setWindowTitle(QtParagraph::textToShow(sheet.title));
  card().setAccessibleName(windowTitle());
  place_ = std::move(sheet.place);
  placeButton_->setAccessibleDescription(
      QString::fromStdString(place_ ? isolatedCoordinates(*place_) : std::string()));
  copyCoordinates_->setEnabled(place_.has_value());
  showOnMap_->setEnabled(place_.has_value());
  sheet.describe(card().content());
  card().showContent();
  link_ = std::move(sheet.link);
}

void PlanSheetWindow::refresh() {
  if (const auto plan = planOfLink(link_)) {
    showPlan(**plan);
  } else {
    showMessage(messageForLinkError(plan.error()));
  }
}

}  // namespace vantrel
