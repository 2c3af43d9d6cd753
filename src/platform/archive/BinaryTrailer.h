#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vantrel {

/// A big-endian number; the caller has checked the bounds.
std::uint64_t bigEndianNumber(std::span<const std::byte> data, std::size_t at, std::size_t size);

/// Where the parts of a binary property list stand, as its last bytes tell.
struct BinaryTrailer {
  static constexpr std::size_t kHeaderSize = 8;

  /// Nothing when the table of objects would not lie inside the list. The objects may.
  static std::optional<BinaryTrailer> ofPropertyList(std::span<const std::byte> data);

  /// Where an object begins, inside the list or not.
  std::size_t offsetOfObject(std::span<const std::byte> data, std::size_t index) const {
    return bigEndianNumber(data, table + index * offsetSize, offsetSize);
  }

  std::size_t offsetSize = 0;
  std::size_t referenceSize = 0;
  std::size_t objectCount = 0;
  std::size_t root = 0;
  std::size_t table = 0;  ///< Of offsets; the objects end where it begins.
};

}  // namespace vantrel
