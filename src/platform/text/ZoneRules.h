#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/text/PosixZoneRule.h"

namespace vantrel {

/// The rules of a time zone, from the bytes of a zone file (RFC 8536, versions 1 to 4) or from a
/// POSIX rule. Searches the bytes in place, so that decoding costs little more than reading.
/// Instants and wall times are in seconds since 1970-01-01 00:00 and range from -2e14 to 2e14. An
/// immutable value; thread-safe.
class ZoneRules {
 public:
  /// `nullopt` if `file` is not a zone file, is damaged, or has leap seconds.
  static std::optional<ZoneRules> decoded(std::string file);
  explicit ZoneRules(PosixZoneRule rule) : rule_(std::move(rule)) {}

  /// O(log n) in the number of changes in the file.
  ZonePeriod periodAt(std::int64_t instant) const;
  /// The first later instant at which the offset, daylight saving time or the abbreviation changes;
  /// `nullopt` if there is none.
  std::optional<std::int64_t> nextChangeAfter(std::int64_t instant) const;
  /// For example, if clocks go from offset 0 to 3600 at instant 7200, the wall times from 7200 to
  /// 10799 are skipped, and 7200 returns 7200, where clocks show 10800. If they go from 3600 to 0
  /// at 7200, the wall times from 7200 to 10799 are repeated, and 7200 returns 3600, the first
  /// time.
  std::int64_t instantOfWallTime(std::int64_t wallTime) const;

  /// The bytes of the zone file; empty if the rules are not from a file.
  const std::string& file() const { return file_; }
  /// The rule that applies after the last change in the file.
  const std::optional<PosixZoneRule>& lastRule() const { return rule_; }

 private:
  ZoneRules() = default;
  bool readBlock(std::size_t start, std::size_t changeSize);
  bool readLastRule();
  bool isSound() const;
  std::int64_t changeAt(std::size_t index) const;
  ZonePeriod periodOfType(std::size_t index) const;

  std::string file_;
  /// A table in the file: the position of its first byte and the number of its entries.
  struct Table {
    std::size_t start = 0;
    std::size_t count = 0;
  };
  Table changes_;
  Table typesOfChanges_;
  Table types_;
  Table abbreviations_;
  std::size_t changeSize_ = 0;
  std::size_t end_ = 0;
  std::optional<PosixZoneRule> rule_;
};

}  // namespace vantrel
