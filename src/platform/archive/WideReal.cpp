#include "platform/archive/WideReal.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/archive/BinaryTrailer.h"

namespace vantrel {

namespace {

constexpr std::byte kRealMarker{0x23};
constexpr std::byte kDateMarker{0x33};
constexpr std::size_t kObjectSize = 9;
constexpr int kTagShift = 32;
/// The upper half of a quiet NaN; the lower half is the real in single precision.
constexpr std::uint64_t kTag = 0x7ffc5752;

bool isTagged(double date) {
  return std::bit_cast<std::uint64_t>(date) >> kTagShift == kTag;
}

/// Calls `replace` with the value of each object of eight bytes under `marker`; what it answers, if
/// anything, takes the object's place under the marker `other`.
template <typename Replace>
void replaceObjects(std::span<std::byte> list, std::byte marker, std::byte other, Replace replace) {
  const auto trailer = BinaryTrailer::ofPropertyList(list);
  if (!trailer) return;
  for (std::size_t i = 0; i < trailer->objectCount; ++i) {
    const std::size_t at = trailer->offsetOfObject(list, i);
    if (at < BinaryTrailer::kHeaderSize || at >= trailer->table) continue;
    if (trailer->table - at < kObjectSize || list[at] != marker) continue;
    const std::optional<double> value =
        replace(std::bit_cast<double>(bigEndianNumber(list, at + 1, kObjectSize - 1)));
    if (!value) continue;
    list[at] = other;
    const auto bits = std::bit_cast<std::uint64_t>(*value);
    for (std::size_t n = 1; n < kObjectSize; ++n) {
      list[at + n] = static_cast<std::byte>(bits >> (8 * (kObjectSize - 1 - n)));
    }
  }
}

}  // namespace

std::optional<double> dateForWideReal(double real) {
  const bool fits =
      std::isinf(real) || std::fabs(real) <= double{std::numeric_limits<float>::max()};
  if (!fits || double{static_cast<float>(real)} != real) return std::nullopt;
  const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(real));
  return std::bit_cast<double>(kTag << kTagShift | bits);
}

std::optional<double> wideRealForDate(double date) {
  if (!isTagged(date)) return std::nullopt;
  return std::bit_cast<float>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(date)));
}

void hideWideReals(std::span<std::byte> list) {
  // A date that came so would be taken for a real.
  replaceObjects(list, kDateMarker, kDateMarker, [](double date) {
    return isTagged(date) ? std::optional(std::numeric_limits<double>::quiet_NaN()) : std::nullopt;
  });
  replaceObjects(list, kRealMarker, kDateMarker, dateForWideReal);
}

void showWideReals(std::span<std::byte> list) {
  replaceObjects(list, kDateMarker, kRealMarker, wideRealForDate);
}

}  // namespace vantrel
