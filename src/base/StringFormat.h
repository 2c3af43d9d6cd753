#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace vantrel {

/// Replaces each "%@" in `format`, from left to right, by the next of `arguments`. Surplus "%@" are
/// kept, those in arguments too. Nothing else in `format` is special, so it may come from a string
/// table.
std::string stringWithFormat(std::string_view format,
                             std::initializer_list<std::string_view> arguments);

/// "41.390000" for 41.39 and 6 decimals: rounded to nearest, with a point in every locale.
std::string decimalText(double number, int decimals);

}  // namespace vantrel
