#pragma once

#include <string>

namespace vantrel {

/// Returns a new random (version 4) UUID as 36 upper-case characters. Thread-safe.
std::string uuidString();

}  // namespace vantrel
