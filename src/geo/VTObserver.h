#pragma once

#include <span>

#include "base/Error.h"
#include "geo/PinLocation.h"
#include "platform/archive/KeyedArchiver.h"
#include "platform/archive/KeyedUnarchiver.h"
#include "time/PtPosition.h"

namespace vantrel {

/// The photographer's pin: it remembers the point of the horizon it looks at, and whether the
/// ephemeris is to be computed for its height above that point. Main thread.
class VTObserver : public PinLocation {
 public:
  /// At the planner's pin in the shared settings, without an altitude or a horizon.
  VTObserver();
  VTObserver(VTObserver&&) = default;
  VTObserver& operator=(VTObserver&&) = default;
  /// The same fields, with a formatter of its own.
  VTObserver copyWithZone() const;

  /// The observer of a keyed archive; damaged data and other objects give an error.
  static Expected<VTObserver> unarchivedObserver(std::span<const std::byte> data);
  Data archivedData() const;
  void encodeWithCoder(KeyedArchiver::Object coder) const;
  /// What the archive lacks is 0: an altitude of 0 is a known one. The settings are not read.
  static VTObserver initWithCoder(const KeyedUnarchiver::Node& coder);

  /// kLocationCoordinate2DInvalid when there is none.
  LocationCoordinate2D horizonPosition() const { return horizonPosition_; }
  void setHorizonPosition(LocationCoordinate2D position) { horizonPosition_ = position; }
  bool adjustForHeightAboveHorizon() const { return adjustForHeightAboveHorizon_; }
  void setAdjustForHeightAboveHorizon(bool adjust) { adjustForHeightAboveHorizon_ = adjust; }
  /// Metres; kNoHorizonAltitude when there is none.
  float altitudeAtHorizon() const { return altitudeAtHorizon_; }
  void setAltitudeAtHorizon(float altitude) { altitudeAtHorizon_ = altitude; }
  bool isAltitudeAtHorizonValid() const { return isValid(altitudeAtHorizon_); }
  void resetHorizon();

  /// Whole metres of the ground (not of the offset) above the horizon point, never below 0; 0 while
  /// either altitude is unknown.
  float heightAboveHorizon() const;
  /// "80m" or "262ft".
  std::string heightAboveHorizonString() const;
  /// "Altitude: 101m", with the height above the horizon behind it when that is adjusted for.
  std::string pinSubtitle() const;
  /// What the ephemeris needs. The altitude includes the offset; unknown heights are 0.
  ephemeris::PtPosition getPtPosition() const;

 private:
  struct WithoutSettings {};
  explicit VTObserver(WithoutSettings /*tag*/) {}

  LocationCoordinate2D horizonPosition_ = kLocationCoordinate2DInvalid;
  bool adjustForHeightAboveHorizon_ = false;
  float altitudeAtHorizon_ = kNoHorizonAltitude;
};

}  // namespace vantrel
