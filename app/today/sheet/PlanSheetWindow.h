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

/// The window of a plan's sheet, with a context menu and a key for each action. Main thread only.
class PlanSheetWindow : public CardWindow {
  Q_OBJECT

 public:
  /// For the parameters see TodayWindow.
  PlanSheetWindow(QtTextMeasurer& measurer, LinkOpener& opener, std::optional<bool> dark);

  /// Shows another plan.
  void showPlan(const Planning& plan);
  /// Returns the link of the plan shown.
  const std::string& link() const { return link_; }
  /// Shows the plan's current values. If it was deleted, the last values stay, with a message.
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
