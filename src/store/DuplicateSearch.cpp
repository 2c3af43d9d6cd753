#include "store/DuplicateSearch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace vantrel {

namespace {

/// A power of two below the tolerance: scaling by it is exact, and all of one cell are close.
constexpr double kCellsPerDegree = 1 << 24;
static_assert(1 / kCellsPerDegree < DuplicateRule::kTolerance);
/// How many cells away something close can lie.
constexpr std::int64_t kReach = 2;
static_assert((kReach - 0.25) / kCellsPerDegree > DuplicateRule::kTolerance);

/// No group: of a record that equals nothing, or in a free slot.
constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Grows with the coordinate. From 2^30 on, where neighbouring numbers are farther apart than the
/// tolerance, each is a cell of its own.
std::int64_t cellOf(double degrees) {
  constexpr double kSparse = 1 << 30;
  const double size = std::abs(degrees);
  if (size < kSparse) return static_cast<std::int64_t>(std::floor(degrees * kCellsPerDegree));
  const auto bits = std::bit_cast<std::int64_t>(size);
  return degrees < 0 ? -bits : bits;
}

void mix(std::uint64_t& hash, std::uint64_t part) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  hash = (hash ^ part) * kOdd;
  hash ^= hash >> 32;
}

/// Equal values have equal hashes, 0 and -0 too.
std::uint64_t hashOf(const Value& value) {
  return std::visit(
      [](const auto& content) -> std::uint64_t {
        using T = std::decay_t<decltype(content)>;
        if constexpr (std::is_same_v<T, Date>) {
          return std::hash<double>()(content.timeIntervalSinceReferenceDate());
        } else if constexpr (std::is_same_v<T, std::vector<std::byte>>) {
          return content.size();
        } else {
          return std::hash<T>()(content);
        }
      },
      value);
}

}  // namespace

DuplicateSearch::DuplicateSearch(const DuplicateRule& rule,
                                 const ManagedObjectContext::Objects& objects,
                                 const std::vector<std::size_t>& imageCounts)
    : rule_(rule), objects_(objects), imageCounts_(imageCounts) {}

void DuplicateSearch::readKeys(std::size_t index, std::vector<Value>& keys) const {
  keys.clear();
  for (const auto key : rule_.equalKeys) keys.push_back(objects_[index]->valueForKey(key));
}

bool DuplicateSearch::isOfGroup(Index index, Index group) {
  const Index first = groups_[group].first;
  if (!imageCounts_.empty() && imageCounts_[index] != imageCounts_[first]) return false;
  if (keysGroup_ != group) {
    readKeys(first, groupKeys_);
    keysGroup_ = group;
  }
  return keys_ == groupKeys_;
}

void DuplicateSearch::addRecord(Index index) {
  readKeys(index, keys_);
  std::uint64_t hash = imageCounts_.empty() ? 0 : imageCounts_[index];
  for (const auto& value : keys_) {
    if (std::holds_alternative<std::monostate>(value)) return;
    mix(hash, hashOf(value));
  }
  if (rule_.hasPlace) {
    const ManagedObject& object = *objects_[index];
    coordinates_[index] = {coordinate(object, kLatitudeKey), coordinate(object, kLongitudeKey)};
  }
  std::size_t slot = hash & (slots_.size() - 1);
  for (; slots_[slot] != kNone; slot = (slot + 1) & (slots_.size() - 1)) {
    Group& group = groups_[slots_[slot]];
    if (group.hash != hash || !isOfGroup(index, slots_[slot])) continue;
    ++group.size;
    groupOf_[index] = slots_[slot];
    return;
  }
  groupOf_[index] = slots_[slot] = static_cast<Index>(groups_.size());
  groups_.push_back({hash, index, 1});
}

/// The records of each group in order, group after group.
std::vector<DuplicateSearch::Index> DuplicateSearch::membersByGroup() const {
  std::vector<Index> ends;
  ends.reserve(groups_.size());
  Index end = 0;
  for (const auto& group : groups_) {
    ends.push_back(end);
    end += group.size;
  }
  std::vector<Index> members(end);
  for (Index index = 0; index < groupOf_.size(); ++index) {
    if (groupOf_[index] != kNone) members[ends[groupOf_[index]]++] = index;
  }
  return members;
}

std::vector<std::size_t> DuplicateSearch::indexes() {
  const std::size_t count = objects_.size();
  isDuplicate_.assign(count, false);
  groups_.clear();
  groupOf_.assign(count, kNone);
  slots_.assign(std::bit_ceil(2 * count + 1), kNone);
  coordinates_.resize(rule_.hasPlace ? count : 0);
  keysGroup_ = kNone;
  for (Index index = 0; index < count; ++index) addRecord(index);
  const auto members = membersByGroup();
  std::size_t begin = 0;
  for (const auto& group : groups_) {
    if (group.size > 1) searchGroup({&members[begin], group.size});
    begin += group.size;
  }
  std::vector<std::size_t> result;
  for (std::size_t index = 0; index < count; ++index) {
    if (isDuplicate_[index]) result.push_back(index);
  }
  return result;
}

void DuplicateSearch::searchGroup(std::span<const Index> members) {
  if (!rule_.hasPlace) {
    for (const Index index : members.subspan(1)) isDuplicate_[index] = true;
    return;
  }
  places_.clear();
  for (const Index index : members) {
    const auto [latitude, longitude] = coordinates_[index];
    if (!std::isfinite(latitude) || !std::isfinite(longitude)) continue;
    places_.push_back({cellOf(latitude), cellOf(longitude), latitude, longitude, index});
  }
  std::sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) {
    if (a.row != b.row) return a.row < b.row;
    if (a.column != b.column) return a.column < b.column;
    return a.index < b.index;
  });
  searchPlaces();
}

void DuplicateSearch::searchPlaces() {
  // For each row around, the first place that may be close. They only move on, as the cells do.
  std::vector<Places> rows(2 * kReach + 1, places_.cbegin());
  for (auto first = places_.cbegin(); first != places_.cend();) {
    auto next = first + 1;
    for (; next != places_.cend() && next->row == first->row && next->column == first->column;
         ++next) {
      isDuplicate_[next->index] = true;
    }
    if (hasEarlierNeighbor(*first, rows)) isDuplicate_[first->index] = true;
    first = next;
  }
}

bool DuplicateSearch::hasEarlierNeighbor(const Place& place, std::vector<Places>& rows) const {
  std::int64_t row = place.row - kReach;
  for (auto& start : rows) {
    const auto isBefore = [&](const Place& other) {
      return std::pair(other.row, other.column) < std::pair(row, place.column - kReach);
    };
    while (start != places_.cend() && isBefore(*start)) ++start;
    for (auto other = start;
         other != places_.cend() && other->row == row && other->column <= place.column + kReach;
         ++other) {
      if (other->index < place.index && areClose(other->latitude, place.latitude) &&
          areClose(other->longitude, place.longitude)) {
        return true;
      }
    }
    ++row;
  }
  return false;
}

}  // namespace vantrel
