#pragma once

#include <cstdlib>
#include <string>

#include "base/Geometry.h"

namespace vantrel {

/// The device as the widget sees it: a desktop, unless a test sets another. Main thread only.
class Device {
 public:
  enum class UserInterfaceIdiom { kPhone, kPad, kDesktop };
  enum class Orientation { kPortrait, kLandscape };

  static Device& currentDevice() {
    static Device device;
    return device;
  }

  /// $VANTREL_SYSTEM_VERSION, otherwise "17.0".
  const std::string& systemVersion() const { return systemVersion_; }
  void setSystemVersion(std::string version) { systemVersion_ = std::move(version); }
  UserInterfaceIdiom userInterfaceIdiom() const { return idiom_; }
  void setUserInterfaceIdiom(UserInterfaceIdiom idiom) { idiom_ = idiom; }
  Orientation orientation() const { return orientation_; }
  void setOrientation(Orientation orientation) { orientation_ = orientation; }
  /// In logical pixels.
  Size screenSize() const { return screen_; }
  void setScreenSize(Size size) { screen_ = size; }

 private:
  Device() {
    if (const char* version = std::getenv("VANTREL_SYSTEM_VERSION"); version && *version) {
      systemVersion_ = version;
    }
  }
  std::string systemVersion_ = "17.0";
  UserInterfaceIdiom idiom_ = UserInterfaceIdiom::kDesktop;
  Orientation orientation_ = Orientation::kLandscape;
  Size screen_{1920, 1080};
};

}  // namespace vantrel
