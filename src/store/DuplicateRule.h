#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "objectstore/ManagedObjectContext.h"

namespace vantrel {

/// Defines when a record is a duplicate of an earlier record of its entity. An absent coordinate
/// counts as 0; any other absent value is equal to no value.
struct DuplicateRule {
  std::string_view entityName;
  /// Whether both coordinates must differ by less than `kTolerance` and the numbers of pictures be
  /// equal.
  bool hasPlace = false;
  std::span<const std::string_view> equalKeys;  ///< Attributes that must be equal exactly.

  static constexpr double kTolerance = 1e-7;  ///< Degrees.
};

/// Plans at the same place and instant with the same name.
extern const DuplicateRule kPlanningRule;
/// Points of interest at the same place with the same name.
extern const DuplicateRule kCustomPoiRule;
/// Cameras with the same model, sensor size and megapixels.
extern const DuplicateRule kCustomCameraRule;

/// Whether `later` is a duplicate of `earlier`.
bool isDuplicate(const DuplicateRule& rule, const ManagedObject& earlier,
                 const ManagedObject& later);

/// Returns the indexes of the objects that are a duplicate of any earlier object, ascending: what
/// isDuplicate() finds for all pairs, in O(n log n) however many are equal. The objects are of the
/// rule's entity. `imageCounts` has the number of pictures of each; ignored for rules without a
/// place.
std::vector<std::size_t> duplicateIndexes(const DuplicateRule& rule,
                                          const ManagedObjectContext::Objects& objects,
                                          const std::vector<std::size_t>& imageCounts);

inline constexpr std::string_view kImagesKey = "images";

}  // namespace vantrel
