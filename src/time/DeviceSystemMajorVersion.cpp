#include "time/DeviceSystemMajorVersion.h"

#include <cstdlib>

#include "platform/system/Device.h"

namespace vantrel {

int DeviceSystemMajorVersion() {
  // Reads up to the first character that is no digit, so the first point ends it.
  static const int version = std::atoi(Device::currentDevice().systemVersion().c_str());
  return version;
}

}  // namespace vantrel
