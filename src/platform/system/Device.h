#pragma once

#include <string>

#include "base/Geometry.h"

namespace vantrel {

/// What the program runs on. A Linux machine is no phone; tests set what they need.
class Device {
 public:
  enum class UserInterfaceIdiom { kPhone, kPad, kDesktop };
  enum class Orientation { kPortrait, kLandscape };

  static Device& currentDevice();

  /// $VANTREL_SYSTEM_VERSION, else "17.0".
  const std::string& systemVersion() const { return systemVersion_; }
  void setSystemVersion(std::string version) { systemVersion_ = std::move(version); }
  UserInterfaceIdiom userInterfaceIdiom() const { return idiom_; }
  void setUserInterfaceIdiom(UserInterfaceIdiom idiom) { idiom_ = idiom; }
  Orientation orientation() const { return orientation_; }
  void setOrientation(Orientation orientation) { orientation_ = orientation; }
  /// Bounds of the main screen, logical pixels.
  Size screenSize() const { return screen_; }
  void setScreenSize(Size size) { screen_ = size; }

 private:
  Device();
  std::string systemVersion_;
  UserInterfaceIdiom idiom_ = UserInterfaceIdiom::kDesktop;
  Orientation orientation_ = Orientation::kLandscape;
  Size screen_{1920, 1080};
};

}  // namespace vantrel
