#pragma once

#include <cstddef>
#include <span>

namespace vantrel {

/// The library reads property lists by recursion and copies a shared value for each place that
/// names it, so that a small hostile file exhausts the stack or the memory; and it fails over some
/// texts that are none. These tell beforehand whether a list stays within PropertyList's limits and
/// holds no such text; what else is wrong with it is the library's to find.
bool binaryPropertyListIsBounded(std::span<const std::byte> data);
bool xmlPropertyListIsBounded(std::span<const std::byte> data);

}  // namespace vantrel
