#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/Planning.h"
#include "today/card/CardContent.h"

namespace vantrel {

struct PlanPlace {
  std::string coordinates;  ///< "41.38510, 2.17340".
  std::string geoLink;      ///< "geo:41.3851000,2.1734000" (RFC 5870).
};
/// Returns the coordinates for display: latitude before longitude in right-to-left interfaces, too.
std::string isolatedCoordinates(const PlanPlace& place);
/// Returns `nullopt` if the plan has no coordinates or they are out of range.
std::optional<PlanPlace> placeOfPlan(const Planning& plan);

/// The texts of a plan's sheet. The plan's own texts are shown as plain text, truncated if very
/// long, and isolated from the direction of other texts.
struct PlanSheetContent {
  explicit PlanSheetContent(const Planning& plan);

  /// Fills in `content` except its bar and the state of focus, pointer and touch. The card's action
  /// copies the link; its row, if any, shows the place.
  void describe(CardContent& content) const;

  std::vector<CardContent::Text> texts;
  std::string title;
  std::string link;  ///< The deep link of the plan.
  std::optional<PlanPlace> place;
};

}  // namespace vantrel
