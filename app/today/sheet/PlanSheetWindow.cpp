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
  place_ = card->addRow();
  place_->setAccessibleName(QString::fromStdString(localized("today_sheet_place")));
  connect(place_, &TouchButton::touchEnded, this, [this] { openLink(geoLink_, "today_no_map"); });
  connect(card, &CardWidget::actionPressed, this, [this] { copyLink(link_); });
  connect(new QShortcut(QKeySequence::Copy, this), &QShortcut::activated, this,
          [this] { copyLink(link_); });
  connect(new QShortcut(QKeySequence::Cancel, this), &QShortcut::activated, this, &QWidget::close);
  setCard(*card);
}

void PlanSheetWindow::showPlan(const Planning& plan) {
  PlanSheetContent sheet(plan);
  setWindowTitle(QtParagraph::textToShow(sheet.title));
  card().setAccessibleName(windowTitle());
  place_->setAccessibleDescription(QtParagraph::textToShow(sheet.place));
  sheet.describe(card().content());
  card().showContent();
  link_ = std::move(sheet.link);
  geoLink_ = std::move(sheet.geoLink);
}

void PlanSheetWindow::refresh() {
  if (const auto plan = planOfLink(link_)) {
    showPlan(**plan);
  } else {
    tell(messageForLinkError(plan.error()));
  }
}

}  // namespace vantrel
