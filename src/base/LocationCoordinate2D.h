#pragma once

namespace vantrel {

/// A geographic position in degrees; north and east are positive.
struct LocationCoordinate2D {
  double latitude = 0;
  double longitude = 0;
};

/// The value for "no position" in pins and archives.
inline constexpr LocationCoordinate2D kLocationCoordinate2DInvalid{-180.0, -180.0};

}  // namespace vantrel
