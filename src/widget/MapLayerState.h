#pragma once

#include <cstdint>

#include "platform/archive/KeyedArchiver.h"
#include "platform/archive/KeyedUnarchiver.h"

namespace vantrel {

/// Whether a layer of the planner's map is visible, by default true. A value. Its keyed archive is
/// one boolean, `isVisible`.
class MapLayerState {
 public:
  /// The class name in archives, with its module.
  static constexpr const char* kClassName = "Vantrel_Today_Events.MapLayerState";

  MapLayerState() = default;
  void encodeWithCoder(KeyedArchiver::Object coder) const {
    coder.encodeBool(isVisible_, kVisibleKey);
  }
  /// A missing key reads as false.
  static MapLayerState initWithCoder(const KeyedUnarchiver::Node& coder) {
    MapLayerState state;
    state.isVisible_ = coder.decodeBoolForKey(kVisibleKey);
    return state;
  }

  bool isVisible() const { return isVisible_; }
  void setIsVisible(bool visible) { isVisible_ = visible; }
  /// The value in the settings: 1 visible, 0 hidden.
  std::int64_t stateValue() const { return isVisible_ ? 1 : 0; }

  friend bool operator==(const MapLayerState&, const MapLayerState&) = default;

 private:
  static constexpr std::string_view kVisibleKey = "isVisible";

  bool isVisible_ = true;
};

}  // namespace vantrel
