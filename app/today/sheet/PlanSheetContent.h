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
/// The coordinates for display: latitude before longitude in right-to-left interfaces, too.
std::string isolatedCoordinates(const PlanPlace& place);
/// `nullopt` if the plan has no coordinates on the globe.
std::optional<PlanPlace> placeOfPlan(const Planning& plan);

/// What the sheet of one plan tells, taken from the plan at one moment. Texts of the plan are plain
/// text, cut where nobody would read on, and do not change the direction of what stands around
/// them.
struct PlanSheetContent {
  explicit PlanSheetContent(const Planning& plan);

  /// Fills in all of the card but its bar and what the user is doing to it. The card's action
  /// copies the link; its row, if it has one, shows the place.
  void describe(CardContent& content) const;

  std::vector<CardContent::Text> texts;
  std::string title;
  std::string link;  ///< The deep link of the plan.
  std::optional<PlanPlace> place;
};

}  // namespace vantrel
