#pragma once

#include <string>
#include <vector>

#include "store/Planning.h"
#include "today/CardContent.h"
#include "today/PlanDescription.h"

namespace vantrel {

/// What the sheet of one plan tells, taken from the plan at one moment. Texts of the plan are plain
/// text, cut where nobody would read on, and do not change the direction of what stands around
/// them.
struct PlanSheetContent {
  enum class Kind { kTitle, kText, kZone, kCaption, kDetail, kPlace };
  struct Item {
    Kind kind;
    std::string text;
    int maximumLines = 0;  ///< 0 for any number.
  };

  CardContent frame;  ///< Its toggle is the button that copies the link.
  std::vector<Item> items;
  std::string title;
  std::string link;     ///< The deep link of the plan.
  std::string geoLink;  ///< "geo:41.3851000,2.1734000" (RFC 5870); empty without a place.

  static PlanSheetContent make(const Planning& plan, const PlanDescription& description);
};

}  // namespace vantrel
