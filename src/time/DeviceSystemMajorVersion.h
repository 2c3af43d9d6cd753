#pragma once

namespace vantrel {

/// Returns the major number of the system version (17 for "17.0.1"), read once per process.
/// Thread-safe.
int DeviceSystemMajorVersion();

}  // namespace vantrel
