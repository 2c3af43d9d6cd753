#include "platform/system/Device.h"

#include <cstdlib>

namespace vantrel {

Device& Device::currentDevice() {
  static Device device;
  return device;
}

Device::Device() : systemVersion_("17.0") {
  if (const char* version = std::getenv("VANTREL_SYSTEM_VERSION"); version && *version) {
    systemVersion_ = version;
  }
}

}  // namespace vantrel
