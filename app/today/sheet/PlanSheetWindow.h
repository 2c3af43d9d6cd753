#pragma once

#include <string>

#include "today/card/CardWindow.h"
#include "today/sheet/PlanSheetContent.h"

namespace vantrel {

/// The window of one plan's sheet. Main thread.
class PlanSheetWindow : public CardWindow {
  Q_OBJECT

 public:
  /// As TodayWindow's.
  PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  /// Takes the place of the plan that was shown before.
  void showPlan(const Planning& plan);
  /// The link of the plan that is shown.
  const std::string& link() const { return link_; }
  /// Shows the plan as it is now; what was shown stays where there is no such plan any more.
  void refresh() override;

 private:
  TouchButton* place_;
  std::string link_;
  std::string geoLink_;
};

}  // namespace vantrel
