#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

/// The values of one row in one block of memory: a million rows cost little more than their bytes.
/// The caller knows each slot's type from the entity (see EntityDescription).
class RowSnapshot {
 public:
  RowSnapshot() = default;
  /// Always true for a default-constructed row.
  bool isAbsent(std::size_t slot) const;
  std::int64_t integer(std::size_t slot) const;
  double real(std::size_t slot) const;
  /// Text or bytes.
  std::string_view text(std::size_t slot) const;
  /// The row's Z_OPT when it was read.
  std::int64_t version() const { return words_ ? static_cast<std::int64_t>(words_[0]) : 0; }

 private:
  friend class RowBuilder;
  const std::uint64_t& word(std::size_t slot) const;

  /// Version, number of slots, one bit for each slot that has a value, the slots, the texts' bytes.
  std::unique_ptr<std::uint64_t[]> words_;
};

/// Builds snapshots, one after the other.
class RowBuilder {
 public:
  explicit RowBuilder(std::size_t slotCount);
  void setInteger(std::size_t slot, std::int64_t value);
  void setReal(std::size_t slot, double value);
  void setText(std::size_t slot, std::string_view value);
  /// Returns a row with the values set since the last call; the other slots are absent.
  RowSnapshot finish(std::int64_t version);

 private:
  void setWord(std::size_t slot, std::uint64_t word);

  std::size_t slotCount_;
  std::size_t slotsAt_;
  std::vector<std::uint64_t> words_;
  std::string texts_;
};

}  // namespace vantrel
