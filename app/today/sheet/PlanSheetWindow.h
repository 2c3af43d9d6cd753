#pragma once

#include <QAction>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "today/card/CardWindow.h"
#include "today/sheet/PlanOpening.h"
#include "today/sheet/PlanSheetContent.h"

namespace vantrel {

/// The window of one plan's sheet. Its context menu offers what to do with the plan, each with a
/// key. Main thread only.
class PlanSheetWindow : public CardWindow {
  Q_OBJECT

 public:
  /// The parameters are those of TodayWindow.
  PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  /// Replaces the plan that is shown.
  void showPlan(const Planning& plan);
  /// The link of the plan that is shown.
  const std::string& link() const { return link_; }
  /// Shows the plan as it is stored now. If it was deleted, its last values stay, with a message.
  void refresh() override;

 private:
  QAction* addMenuAction(std::string_view text, const QKeySequence& key,
                         const std::function<void()>& act);
  void showNeighbour(Direction direction);

  TouchButton* placeButton_;
  QAction* copyCoordinates_;
  QAction* showOnMap_;
  std::string link_;
  std::optional<PlanPlace> place_;
};

}  // namespace vantrel
