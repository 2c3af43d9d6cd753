#include "platform/text/ZoneRules.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace vantrel {

namespace {

constexpr std::size_t kTypeSize = 6;
/// In seconds; RFC 8536 allows smaller offsets only.
constexpr std::int64_t kOffsetLimit = 26 * 3600;

unsigned char byteAt(std::string_view bytes, std::size_t position) {
  return static_cast<unsigned char>(bytes[position]);
}

/// A signed big-endian number of four or eight bytes.
std::int64_t numberAt(std::string_view bytes, std::size_t position, std::size_t size) {
  std::uint64_t value = byteAt(bytes, position) < 0x80 ? 0 : ~std::uint64_t{0};
  for (std::size_t i = 0; i < size; ++i) value = value << 8 | byteAt(bytes, position + i);
  return static_cast<std::int64_t>(value);
}

}  // namespace

std::optional<ZoneRules> ZoneRules::decoded(std::string file) {
  constexpr std::size_t kVersion = 4;
  ZoneRules rules;
  rules.file_ = std::move(file);
  bool isZone = rules.readBlock(0, 4);
  if (isZone && rules.file_[kVersion] >= '2') {
    // Skip the first block: it is the 32-bit version of the second.
    isZone = rules.readBlock(rules.end_, 8) && rules.readLastRule();
  }
  if (!isZone || !rules.isSound()) return std::nullopt;
  return rules;
}

bool ZoneRules::readBlock(std::size_t start, std::size_t changeSize) {
  constexpr std::size_t kHeaderSize = 44;
  constexpr std::size_t kCounts = 20;
  if (file_.size() < start + kHeaderSize || file_.compare(start, 4, "TZif") != 0) return false;
  std::size_t place = start + kHeaderSize;
  const auto table = [&](std::size_t countIndex, std::size_t size) {
    const auto count =
        static_cast<std::uint32_t>(numberAt(file_, start + kCounts + countIndex * 4, 4));
    const Table made{place, count};
    place += count * size;
    return made;
  };
  changes_ = table(3, changeSize);
  typesOfChanges_ = table(3, 1);
  types_ = table(4, kTypeSize);
  abbreviations_ = table(5, 1);
  const bool hasLeapSeconds = table(2, changeSize + 4).count > 0;
  table(1, 1);
  table(0, 1);
  changeSize_ = changeSize;
  end_ = place;
  return end_ <= file_.size() && !hasLeapSeconds;
}

bool ZoneRules::readLastRule() {
  const auto footer = std::string_view(file_).substr(end_);
  const auto length = footer.find('\n', 1);
  if (!footer.starts_with('\n') || length == std::string_view::npos) return false;
  if (length == 1) return true;
  rule_ = PosixZoneRule::parsed(footer.substr(1, length - 1));
  return rule_.has_value();
}

bool ZoneRules::isSound() const {
  if (types_.count == 0 || abbreviations_.count == 0) return false;
  if (byteAt(file_, abbreviations_.start + abbreviations_.count - 1) != 0) return false;
  for (std::size_t i = 0; i < types_.count; ++i) {
    const std::size_t type = types_.start + i * kTypeSize;
    if (std::abs(numberAt(file_, type, 4)) >= kOffsetLimit || byteAt(file_, type + 4) > 1 ||
        byteAt(file_, type + 5) >= abbreviations_.count) {
      return false;
    }
  }
  for (std::size_t i = 0; i < changes_.count; ++i) {
    if (byteAt(file_, typesOfChanges_.start + i) >= types_.count) return false;
    if (i > 0 && changeAt(i) <= changeAt(i - 1)) return false;
  }
  return true;
}

std::int64_t ZoneRules::changeAt(std::size_t index) const {
  return std::clamp(numberAt(file_, changes_.start + index * changeSize_, changeSize_),
                    -ZonePeriod::kForever, ZonePeriod::kForever);
}

ZonePeriod ZoneRules::periodOfType(std::size_t index) const {
  const std::size_t type = types_.start + index * kTypeSize;
  ZonePeriod period;
  period.offset = static_cast<int>(numberAt(file_, type, 4));
  period.isDaylight = byteAt(file_, type + 4) != 0;
  period.abbreviation = file_.data() + abbreviations_.start + byteAt(file_, type + 5);
  return period;
}

ZonePeriod ZoneRules::periodAt(std::int64_t instant) const {
  std::size_t before = 0;
  for (std::size_t last = changes_.count; before < last;) {
    const std::size_t middle = (before + last) / 2;
    if (changeAt(middle) <= instant) {
      before = middle + 1;
    } else {
      last = middle;
    }
  }
  const std::int64_t begin = before > 0 ? changeAt(before - 1) : -ZonePeriod::kForever;
  ZonePeriod ofRule;
  if (before == changes_.count && rule_) {
    ofRule = rule_->periodAt(instant);
    // The file's last change lasts until the rule's next one, even if the rule disagrees: Ojinaga
    // adopted its rule in the middle of a period.
    if (before == 0 || ofRule.begin > begin) return ofRule;
  }
  auto period = periodOfType(before > 0 ? byteAt(file_, typesOfChanges_.start + before - 1) : 0);
  period.begin = begin;
  period.end = before < changes_.count ? changeAt(before) : ofRule.end;
  return period;
}

std::optional<std::int64_t> ZoneRules::nextChangeAfter(std::int64_t instant) const {
  auto period = periodAt(instant);
  while (period.end < ZonePeriod::kForever) {
    const auto next = periodAt(period.end);
    if (next.offset != period.offset || next.isDaylight != period.isDaylight ||
        next.abbreviation != period.abbreviation) {
      return next.begin;
    }
    period = next;
  }
  return std::nullopt;
}

std::int64_t ZoneRules::instantOfWallTime(std::int64_t wallTime) const {
  // Periods before this one end earlier than `wallTime`, whatever their offsets.
  auto period = periodAt(wallTime - kOffsetLimit);
  while (period.end < ZonePeriod::kForever && period.end + period.offset <= wallTime) {
    const int offsetBefore = period.offset;
    period = periodAt(period.end);
    if (wallTime < period.begin + period.offset) return wallTime - offsetBefore;
  }
  return wallTime - period.offset;
}

}  // namespace vantrel
