#pragma once

namespace vantrel {

/// The major number of the system version (17 for "17.0.1"), read once per process. Any thread.
int DeviceSystemMajorVersion();

}  // namespace vantrel
