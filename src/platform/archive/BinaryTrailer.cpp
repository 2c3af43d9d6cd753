#include "platform/archive/BinaryTrailer.h"

namespace vantrel {

std::uint64_t bigEndianNumber(std::span<const std::byte> data, std::size_t at, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < size; ++i) {
    value = value << 8 | std::to_integer<std::uint64_t>(data[at + i]);
  }
  return value;
}

std::optional<BinaryTrailer> BinaryTrailer::ofPropertyList(std::span<const std::byte> data) {
  constexpr std::size_t kSize = 32;
  if (data.size() < kHeaderSize + kSize + 2) return std::nullopt;
  const std::size_t at = data.size() - kSize;
  const BinaryTrailer trailer{.offsetSize = bigEndianNumber(data, at + 6, 1),
                              .referenceSize = bigEndianNumber(data, at + 7, 1),
                              .objectCount = bigEndianNumber(data, at + 8, 8),
                              .root = bigEndianNumber(data, at + 16, 8),
                              .table = bigEndianNumber(data, at + 24, 8)};
  const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
  if (!isSize(trailer.offsetSize) || !isSize(trailer.referenceSize)) return std::nullopt;
  if (trailer.table < kHeaderSize || trailer.table > at) return std::nullopt;
  const bool fits = trailer.objectCount <= (at - trailer.table) / trailer.offsetSize;
  if (!fits || trailer.root >= trailer.objectCount) return std::nullopt;
  return trailer;
}

}  // namespace vantrel
