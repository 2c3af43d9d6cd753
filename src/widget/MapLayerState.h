#pragma once

#include <cstdint>

#include "platform/archive/KeyedArchiver.h"
#include "platform/archive/KeyedUnarchiver.h"

namespace vantrel {

/// Whether a layer of the planner's map is shown; a new one is. A value.
class MapLayerState {
 public:
  /// With the module it lives in, as it stands in archives.
  static constexpr const char* kClassName = "Vantrel_Today_Events.MapLayerState";

  MapLayerState() = default;
  void encodeWithCoder(KeyedArchiver::Object coder) const;
  /// Hidden when the archive does not tell.
  static MapLayerState initWithCoder(const KeyedUnarchiver::Node& coder);

  bool isVisible() const { return isVisible_; }
  void setIsVisible(bool visible) { isVisible_ = visible; }
  /// The form kept in the settings: 1 visible, 0 hidden.
  std::int64_t stateValue() const { return isVisible_ ? 1 : 0; }

  friend bool operator==(const MapLayerState&, const MapLayerState&) = default;

 private:
  bool isVisible_ = true;
};

}  // namespace vantrel
