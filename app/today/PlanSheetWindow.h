#pragma once

#include <string>

#include "today/CardWindow.h"
#include "today/LinkOpener.h"
#include "today/PlanSheetWidget.h"
#include "today/RefreshTriggers.h"

namespace vantrel {

/// The window of one plan's sheet, which follows the plan and the time zone. Main thread.
class PlanSheetWindow : public CardWindow {
  Q_OBJECT

 public:
  /// As TodayWindow's.
  PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  /// Takes the place of the plan that was shown before.
  void showPlan(PlanSheetContent content);
  /// The link of the plan that is shown.
  const std::string& link() const { return sheet_->content().link; }

 protected:
  int naturalHeight() const override { return sheet_->naturalHeight(); }
  void applySettings(const Theme& theme, const QColor& background, bool newTextScale) override;

 private:
  void renew();
  void copy(const std::string& text);
  void openPlace();

  RefreshTriggers triggers_;
  LinkOpener& opener_;
  PlanSheetWidget* sheet_;
};

}  // namespace vantrel
