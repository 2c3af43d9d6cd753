#include "store/DuplicateRule.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <compare>
#include <cstdint>
#include <tuple>
#include <variant>

#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Planning.h"

namespace vantrel {

namespace {

constexpr std::array<std::string_view, 2> kPlanningKeys = {"date", "name"};
constexpr std::array<std::string_view, 1> kCustomPoiKeys = {"name"};
constexpr std::array<std::string_view, 4> kCustomCameraKeys = {"model", "sensorWidth",
                                                               "sensorHeight", "megapixels"};

/// Degrees; 0 if absent.
double coordinate(const ManagedObject& object, std::string_view key) {
  const Value value = object.valueForKey(key);
  const auto* degrees = std::get_if<double>(&value);
  return degrees ? *degrees : 0;
}

/// False for infinite coordinates, whose difference is infinite or NaN.
bool areClose(double a, double b) {
  return std::abs(a - b) < DuplicateRule::kTolerance;
}

/// Absent values and NaN are equal to no value.
bool isComparable(const Value& value) {
  const Value& same = value;
  return !std::holds_alternative<std::monostate>(value) && value == same;
}

bool haveEqualKeys(const DuplicateRule& rule, const ManagedObject& earlier,
                   const ManagedObject& later) {
  return std::all_of(rule.equalKeys.begin(), rule.equalKeys.end(), [&](std::string_view key) {
    const Value value = earlier.valueForKey(key);
    return isComparable(value) && value == later.valueForKey(key);
  });
}

/// A power of two below the tolerance: multiplying by it is exact, and two coordinates in one cell
/// are always close.
constexpr double kCellsPerDegree = 1 << 24;
static_assert(1 / kCellsPerDegree < DuplicateRule::kTolerance);
/// Close coordinates are at most this many cells apart.
constexpr std::int64_t kReach = 2;
static_assert((kReach - 0.25) / kCellsPerDegree > DuplicateRule::kTolerance);

/// Returns the cell of a finite coordinate; monotonic. From 2^30 on, neighbouring doubles differ by
/// more than the tolerance: each is a cell of its own.
std::int64_t cellOf(double degrees) {
  constexpr double kSparse = 1 << 30;
  const double size = std::abs(degrees);
  if (size < kSparse) return static_cast<std::int64_t>(std::floor(degrees * kCellsPerDegree));
  const auto bits = std::bit_cast<std::int64_t>(size);
  return degrees < 0 ? -bits : bits;
}

struct Record {
  const Value* keys;
  std::size_t imageCount;
  std::size_t index;
  double latitude;
  double longitude;
  std::pair<std::int64_t, std::int64_t> cell;  ///< Of latitude and longitude.
};
using Records = std::span<const Record>;

/// Whether a record of the group is close to `record` and earlier.
bool hasEarlierNeighbor(const Record& record, Records group) {
  const auto [row, column] = record.cell;
  for (auto nearRow = row - kReach; nearRow <= row + kReach; ++nearRow) {
    const std::pair first(nearRow, column - kReach);
    const std::pair last(nearRow, column + kReach);
    auto other = std::partition_point(group.begin(), group.end(),
                                      [&](const Record& r) { return r.cell < first; });
    for (; other != group.end() && other->cell <= last; ++other) {
      if (other->index < record.index && areClose(other->latitude, record.latitude) &&
          areClose(other->longitude, record.longitude))
        return true;
    }
  }
  return false;
}

/// Appends the duplicates of records that differ in nothing but the place, sorted by cell and
/// index. Only the first record of a cell must be compared with others: the rest are close to it.
void addDuplicates(Records group, std::vector<std::size_t>& indexes) {
  for (std::size_t i = 0; i < group.size(); ++i) {
    const bool isFirst = i == 0 || group[i - 1].cell != group[i].cell;
    if (!isFirst || (group.size() > 1 && hasEarlierNeighbor(group[i], group)))
      indexes.push_back(group[i].index);
  }
}

}  // namespace

constexpr DuplicateRule kPlanningRule = {Planning::kEntityName, true, kPlanningKeys};
constexpr DuplicateRule kCustomPoiRule = {CustomPoi::kEntityName, true, kCustomPoiKeys};
constexpr DuplicateRule kCustomCameraRule = {CustomCamera::kEntityName, false, kCustomCameraKeys};

bool isDuplicate(const DuplicateRule& rule, const ManagedObject& earlier,
                 const ManagedObject& later) {
  if (!rule.hasPlace) return haveEqualKeys(rule, earlier, later);
  const auto areCloseAlong = [&](std::string_view key) {
    return areClose(coordinate(earlier, key), coordinate(later, key));
  };
  return areCloseAlong("latitude") && areCloseAlong("longitude") &&
         haveEqualKeys(rule, earlier, later) &&
         earlier.countOfRelatedObjects(kImagesKey) == later.countOfRelatedObjects(kImagesKey);
}

std::vector<std::size_t> duplicateIndexes(const DuplicateRule& rule,
                                          const ManagedObjectContext::Objects& objects,
                                          const std::vector<std::size_t>& imageCounts) {
  const std::size_t keyCount = rule.equalKeys.size();
  std::vector<Value> keys;
  keys.reserve(objects.size() * keyCount);  // no reallocation: records point into it
  std::vector<Record> records;
  records.reserve(objects.size());
  for (std::size_t index = 0; index < objects.size(); ++index) {
    const ManagedObject& object = *objects[index];
    Record record{keys.data() + keys.size(), 0, index, 0, 0, {}};
    for (const auto key : rule.equalKeys) keys.push_back(object.valueForKey(key));
    if (!std::all_of(record.keys, record.keys + keyCount, isComparable)) continue;
    if (rule.hasPlace) {
      record.imageCount = imageCounts[index];
      record.latitude = coordinate(object, "latitude");
      record.longitude = coordinate(object, "longitude");
      if (!std::isfinite(record.latitude) || !std::isfinite(record.longitude)) continue;
      record.cell = {cellOf(record.latitude), cellOf(record.longitude)};
    }
    // Consecutive equal keys are shared: a pointer comparison then replaces that of the texts.
    if (!records.empty() && std::equal(record.keys, record.keys + keyCount, records.back().keys)) {
      record.keys = records.back().keys;
    }
    records.push_back(record);
  }
  const auto compareKeys = [keyCount](const Record& a, const Record& b) -> std::partial_ordering {
    if (a.keys == b.keys) return std::partial_ordering::equivalent;
    return std::lexicographical_compare_three_way(a.keys, a.keys + keyCount, b.keys,
                                                  b.keys + keyCount);
  };
  std::sort(records.begin(), records.end(), [&](const Record& a, const Record& b) {
    if (const auto order = compareKeys(a, b); std::is_neq(order)) return std::is_lt(order);
    return std::tie(a.imageCount, a.cell, a.index) < std::tie(b.imageCount, b.cell, b.index);
  });
  std::vector<std::size_t> indexes;
  for (auto first = records.cbegin(); first != records.cend();) {
    const auto end = std::find_if(first + 1, records.cend(), [&](const Record& record) {
      return record.imageCount != first->imageCount || std::is_neq(compareKeys(*first, record));
    });
    addDuplicates({first, end}, indexes);
    first = end;
  }
  std::sort(indexes.begin(), indexes.end());
  return indexes;
}

}  // namespace vantrel
