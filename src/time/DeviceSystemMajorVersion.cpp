#include "time/DeviceSystemMajorVersion.h"

#include <cstdlib>

#include "platform/system/Device.h"

namespace vantrel {

int DeviceSystemMajorVersion() {
  static const int version = std::atoi(Device::currentDevice().systemVersion().c_str());
  return version;
}

}  // namespace vantrel
