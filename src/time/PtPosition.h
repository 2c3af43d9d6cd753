#pragma once

namespace vantrel::ephemeris {

/// An observer's position, geographic and geocentric.
struct PtPosition {
  PtPosition(double latitude, double longitude, double altitude, double heightAboveHorizon);
  /// Computes the last three fields from latitude and altitude; the constructor calls it. Source:
  /// Meeus, Astronomical Algorithms, chapter 11, with the axes of WGS 84.
  void CalcObserverCoords();

  double latitude;            ///< Geodetic, degrees, north positive.
  double longitude;           ///< Degrees.
  double altitude;            ///< Metres above the ellipsoid.
  double heightAboveHorizon;  ///< Metres above the visible horizon; 0 if not used.
  double rho = 0;             ///< Distance from the Earth's centre, equatorial radii.
  double rhoCosPhi = 0;       ///< rho times the cosine of the geocentric latitude.
  double rhoSinPhi = 0;       ///< rho times the sine of the geocentric latitude.
};

}  // namespace vantrel::ephemeris
