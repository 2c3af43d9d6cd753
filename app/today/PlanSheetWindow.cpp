#include "today/PlanSheetWindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QShortcut>
#include <QTimer>
#include <chrono>

#include "platform/Bundle.h"
#include "platform/qt/QtParagraph.h"
#include "store/Database.h"
#include "today/PlanOpening.h"

namespace vantrel {

namespace {

constexpr std::chrono::seconds kCopiedNotice{4};

std::string text(std::string_view key) {
  return Bundle::mainBundle().localizedString(key, "", "Today");
}

}  // namespace

PlanSheetWindow::PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener,
                                 std::optional<bool> dark)
    : CardWindow(measurer, dark),
      triggers_(Database::sharedInstance().groupStoreURL().value_or(std::filesystem::path())),
      opener_(opener),
      sheet_(new PlanSheetWidget(measurer, this)) {
  setWidget(sheet_);
  sheet_->resize(size());
  connect(&triggers_, &RefreshTriggers::storeChanged, this, &PlanSheetWindow::renew);
  connect(&triggers_, &RefreshTriggers::timeZoneChanged, this, &PlanSheetWindow::renew);
  connect(sheet_, &PlanSheetWidget::copyPressed, this, [this] { copy(link()); });
  connect(sheet_, &PlanSheetWidget::barActed, this, [this] { copy(sheet_->content().geoLink); });
  connect(sheet_, &PlanSheetWidget::placePressed, this, &PlanSheetWindow::openPlace);
  connect(sheet_, &PlanSheetWidget::naturalHeightChanged, this, &PlanSheetWindow::fitHeight);
  connect(new QShortcut(QKeySequence::Cancel, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(QKeySequence::Copy, this), &QShortcut::activated, this,
          [this] { copy(link()); });
  takeDesktopSettings();
}

void PlanSheetWindow::showPlan(PlanSheetContent content) {
  setWindowTitle(QtParagraph::textToShow(content.title));
  sheet_->showPlan(std::move(content));
  fitHeight();
}

/// What was shown stays where the plan is gone, and that is told.
void PlanSheetWindow::renew() {
  const auto plan = planOfLink(link());
  triggers_.ignoreStoreChangesSoFar();
  if (plan) return showPlan(PlanSheetContent::make(**plan, PlanDescription()));
  sheet_->setBar(CardContent::Bar{messageForLinkError(plan.error()), {}});
}

void PlanSheetWindow::applySettings(const Theme& theme, const QColor& background,
                                    bool newTextScale) {
  sheet_->setTheme(theme, background);
  if (newTextScale) sheet_->layOut();
}

void PlanSheetWindow::copy(const std::string& link) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(link));
  sheet_->setBar(CardContent::Bar{text("today_link_copied"), {}});
  QTimer::singleShot(kCopiedNotice, this, [this] {
    const auto& bar = sheet_->content().frame.bar;
    if (bar && bar->action.empty()) sheet_->setBar(std::nullopt);
  });
}

void PlanSheetWindow::openPlace() {
  if (opener_.open(sheet_->content().geoLink) == LinkOpener::Result::kOpened) {
    return sheet_->setBar(std::nullopt);
  }
  sheet_->setBar(CardContent::Bar{text("today_no_map"), text("today_copy_link")});
}

}  // namespace vantrel
