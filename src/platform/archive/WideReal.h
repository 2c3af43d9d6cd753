#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace vantrel {

// The property list library does not tell whether a real stood in 64 bits or in 32, and writes in
// 32 bits whatever they hold. A real that is to keep its 64 bits all the same, as 41.5 does in the
// planner's latitude, passes through its hands as a date that is no number: those it keeps to the
// bit, and no program writes one.

/// The date that stands for a wide real; nothing when the library would not narrow the real.
std::optional<double> dateForWideReal(double real);
/// The real that a date stands for; nothing for a date in earnest.
std::optional<double> wideRealForDate(double date);

/// Turns the wide reals of a binary list that is to be read into their dates. Any bytes may come;
/// what they then are is still to be checked.
void hideWideReals(std::span<std::byte> list);
/// Turns them back in a list that was written.
void showWideReals(std::span<std::byte> list);

}  // namespace vantrel
