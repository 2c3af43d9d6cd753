#pragma once

#include <string>

namespace vantrel {

/// The text of a new random (version 4) UUID: 36 characters, upper-case hexadecimal digits in
/// groups 8-4-4-4-12. Any thread.
std::string uuidString();

}  // namespace vantrel
