#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/text/PosixZoneRule.h"

namespace vantrel {

/// The rules of a time zone, from the bytes of a zone file (RFC 8536, versions 1 to 4) or from a
/// POSIX rule. Keeps the bytes and searches them where they are, so that decoding costs little more
/// than reading. Instants and wall times are in seconds since 1970-01-01 00:00, within +-2e14. An
/// immutable value; thread-safe.
class ZoneRules {
 public:
  /// `nullopt` if the bytes are no zone file, are damaged, or count leap seconds.
  static std::optional<ZoneRules> decoded(std::string file);
  explicit ZoneRules(PosixZoneRule rule) : rule_(std::move(rule)) {}

  /// O(log n) in the number of the file's changes.
  ZonePeriod periodAt(std::int64_t instant) const;
  /// The first instant after `instant` at which offset, daylight saving time or abbreviation
  /// changes; `nullopt` if there is none.
  std::optional<std::int64_t> nextChangeAfter(std::int64_t instant) const;
  /// The first of two instants for a repeated wall time; a skipped one moves forward by the gap.
  std::int64_t instantOfWallTime(std::int64_t wallTime) const;

  /// Empty if the rules are not from a file.
  const std::string& file() const { return file_; }
  /// The rule after the last change of the file.
  const std::optional<PosixZoneRule>& lastRule() const { return rule_; }

 private:
  ZoneRules() = default;
  bool readBlock(std::size_t start, std::size_t changeSize);
  bool readLastRule();
  bool isSound() const;
  std::int64_t changeAt(std::size_t index) const;
  ZonePeriod periodOfType(std::size_t index) const;

  std::string file_;
  /// Positions in the file, and the number of entries there.
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
