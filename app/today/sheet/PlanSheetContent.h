#pragma once

#include <string>
#include <vector>

#include "store/Planning.h"
#include "today/card/CardContent.h"

namespace vantrel {

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
  std::string link;     ///< The deep link of the plan.
  std::string place;    ///< "41.38510, 2.17340"; empty without a place.
  std::string geoLink;  ///< "geo:41.3851000,2.1734000" (RFC 5870); empty without a place.
};

}  // namespace vantrel
