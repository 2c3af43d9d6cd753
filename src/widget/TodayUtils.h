#pragma once

#include <cstdint>
#include <memory>

#include "base/Date.h"
#include "base/Geometry.h"
#include "base/LocationCoordinate2D.h"
#include "platform/view/Label.h"

namespace vantrel {

/// Label factories and layout rules of the widget's views, and the presets of the main
/// application's planner, written to the shared settings. Main thread only.
class TodayUtils {
 public:
  TodayUtils() = delete;

  /// True for widths above 600 before system version 10.
  static bool shouldLayoutWithTwoColumns(const Rect& rect);
  /// Creates a label with the style of applyTextStyle().
  static std::unique_ptr<Label> textLabel();
  /// Like textLabel(), but bold.
  static std::unique_ptr<Label> titleLabel();
  /// The left margin of a column of icons for the device's kind, orientation and screen.
  static double iconLeftMargin();

  /// Presets the planner's map, observer (a new one at `position`), date and time zone (the
  /// device's), and hides the obstacle.
  static void setDefaultPlannerPosition(LocationCoordinate2D position, Date date);
  static void setCurrentPlannerPanelIndex(std::int64_t index);
  static void setPlannerMilkyWayVisible(bool visible);

  /// Sets the widget's text colour, the regular font of size 15, and shrinking to 2/3 to fit.
  static void applyTextStyle(Label& label);
};

}  // namespace vantrel
