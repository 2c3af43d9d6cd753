#pragma once

#include <span>

#include "base/Error.h"
#include "geo/PinLocation.h"
#include "platform/archive/KeyedArchiver.h"
#include "platform/archive/KeyedUnarchiver.h"
#include "time/PtPosition.h"

namespace vantrel {

/// The photographer's pin. It has the point of the horizon that the photographer looks at and a
/// flag whether the ephemeris uses the height above that point. Main thread only.
///
/// Its keyed archive, with the values of a summit set by hand, without a horizon:
///
///     position_latitude           41.6053      altitude_altitude               1236.0  (32 bits)
///     position_longitude          1.8119       altitude_offset                 1.5     (32 bits)
///     altitude_latitude           -180.0       altitude_accuracy               -1
///     altitude_longitude          -180.0       altitude_altitudeAtHorizon      1.1754944e-38
///     altitude_adjust_height_horizon  false
///
/// Older archives have the boolean `altitude_manual`, never written now, which overrides
/// `altitude_accuracy`: true is -1, false is 0.
class VTObserver : public PinLocation {
 public:
  /// Creates an observer at the planner's pin in the shared settings ((0, 0) if there is none),
  /// without an altitude or a horizon.
  VTObserver();
  VTObserver(VTObserver&&) = default;
  VTObserver& operator=(VTObserver&&) = default;
  VTObserver copyWithZone() const;

  /// Reads an observer from a keyed archive. Errors: damaged data, or another class.
  static Expected<VTObserver> unarchivedObserver(std::span<const std::byte> data);
  Data archivedData() const;
  void encodeWithCoder(KeyedArchiver::Object coder) const;
  /// Missing keys read as 0, which is a valid altitude. Does not read the settings.
  static VTObserver initWithCoder(const KeyedUnarchiver::Node& coder);

  /// kLocationCoordinate2DInvalid if there is none.
  LocationCoordinate2D horizonPosition() const { return horizonPosition_; }
  void setHorizonPosition(LocationCoordinate2D position) { horizonPosition_ = position; }
  bool adjustForHeightAboveHorizon() const { return adjustForHeightAboveHorizon_; }
  void setAdjustForHeightAboveHorizon(bool adjust) { adjustForHeightAboveHorizon_ = adjust; }
  /// Metres; kNoHorizonAltitude if there is none.
  float altitudeAtHorizon() const { return altitudeAtHorizon_; }
  void setAltitudeAtHorizon(float altitude) { altitudeAtHorizon_ = altitude; }
  bool isAltitudeAtHorizonValid() const { return isValid(altitudeAtHorizon_); }
  void resetHorizon();

  /// Returns the whole metres from the horizon point up to the ground (without the offset), at
  /// least 0. Returns 0 if the altitude is not valid, or that of the horizon is kNoHorizonAltitude
  /// or kUnknownAltitude; a horizon of kMissingAltitude (-32768) counts as 0 metres.
  float heightAboveHorizon() const;
  /// "80m" or "262ft".
  std::string heightAboveHorizonString() const;
  /// "Altitude: 101m", followed by " | Height above horizon: 80m" if adjustForHeightAboveHorizon().
  std::string pinSubtitle() const;
  /// The altitude includes the offset. Unknown altitudes are 0, and so is the height above the
  /// horizon unless adjustForHeightAboveHorizon().
  ephemeris::PtPosition getPtPosition() const;

 private:
  struct WithoutSettings {};
  explicit VTObserver(WithoutSettings /*tag*/) {}

  LocationCoordinate2D horizonPosition_ = kLocationCoordinate2DInvalid;
  bool adjustForHeightAboveHorizon_ = false;
  float altitudeAtHorizon_ = kNoHorizonAltitude;
};

}  // namespace vantrel
