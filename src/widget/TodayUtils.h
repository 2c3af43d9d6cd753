#pragma once

#include <cstdint>
#include <memory>

#include "base/Date.h"
#include "base/Geometry.h"
#include "base/LocationCoordinate2D.h"
#include "platform/view/Label.h"

namespace vantrel {

/// What the widget's views share, and the hand-off to the main application's planner, which finds
/// what is set here in the shared settings. Main thread.
class TodayUtils {
 public:
  TodayUtils() = delete;

  /// Whether rows stand in two columns: on widths above 600 before system version 10.
  static bool shouldLayoutWithTwoColumns(const Rect& rect);
  /// A label of regular weight, size 15, that shrinks to 2/3 to fit.
  static std::unique_ptr<Label> textLabel();
  /// The same, bold.
  static std::unique_ptr<Label> titleLabel();
  /// The left margin of a column of icons, by the device's kind, orientation and screen.
  static double iconLeftMargin();

  /// Presets the planner: its map, a fresh observer there, the date, the device's zone; the
  /// obstacle is switched off.
  static void setDefaultPlannerPosition(LocationCoordinate2D position, Date date);
  static void setCurrentPlannerPanelIndex(std::int64_t index);
  static void setPlannerMilkyWayVisible(bool visible);

  /// Makes a label one of the widget's: its colour, regular weight, and shrinking.
  static void applyTextStyle(Label& label);
};

}  // namespace vantrel
