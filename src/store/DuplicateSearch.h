#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/LocationCoordinate2D.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/DuplicateRule.h"

namespace vantrel {

/// Finds the records that are a duplicate of any earlier one, as comparing each with each would, in
/// a time that grows with n log n even when all are alike: records are brought together by what
/// must be equal exactly; those of one group are ordered by cells of latitude and longitude so
/// small that all in one cell are close, and only the first of a cell has to look around.
class DuplicateSearch {
 public:
  /// `imageCounts` is empty for rules without a place. All are of one context and of the rule's
  /// entity, and outlive the search.
  DuplicateSearch(const DuplicateRule& rule, const ManagedObjectContext::Objects& objects,
                  const std::vector<std::size_t>& imageCounts);

  /// Indexes of the duplicates, ascending, each once.
  std::vector<std::size_t> indexes();

 private:
  using Index = std::uint32_t;
  /// Records that agree in all that must be equal exactly.
  struct Group {
    std::uint64_t hash;
    Index first;
    Index size;
  };
  struct Place {
    std::int64_t row;  ///< Cell of the latitude.
    std::int64_t column;
    double latitude;
    double longitude;
    Index index;
  };
  using Places = std::vector<Place>::const_iterator;

  void readKeys(std::size_t index, std::vector<Value>& keys) const;
  void addRecord(Index index);
  bool isOfGroup(Index index, Index group);
  std::vector<Index> membersByGroup() const;
  void searchGroup(std::span<const Index> members);
  void searchPlaces();
  bool hasEarlierNeighbor(const Place& place, std::vector<Places>& rows) const;

  const DuplicateRule& rule_;
  const ManagedObjectContext::Objects& objects_;
  const std::vector<std::size_t>& imageCounts_;
  std::vector<Group> groups_;
  std::vector<Index> slots_;    ///< A hash table of groups.
  std::vector<Index> groupOf_;  ///< By record.
  std::vector<LocationCoordinate2D> coordinates_;
  std::vector<Value> keys_;       ///< Of the record at hand.
  std::vector<Value> groupKeys_;  ///< Of the last group that one was found to belong to.
  Index keysGroup_ = 0;
  std::vector<Place> places_;
  std::vector<bool> isDuplicate_;
};

}  // namespace vantrel
