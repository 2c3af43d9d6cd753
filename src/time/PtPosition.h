#pragma once

namespace vantrel::ephemeris {

/// Where an observer stands, geographic and seen from the Earth's centre.
struct PtPosition {
  PtPosition(double latitude, double longitude, double altitude, double heightAboveHorizon);
  /// Derives the last three fields from latitude and altitude. Source: Meeus, Astronomical
  /// Algorithms, chapter 11, with the axes of WGS 84.
  void CalcObserverCoords();

  double latitude;            ///< Geodetic, degrees, north positive.
  double longitude;           ///< Degrees, as given.
  double altitude;            ///< Metres above the ellipsoid.
  double heightAboveHorizon;  ///< Metres above the visible horizon; 0 when not used.
  double rho = 0;             ///< Distance from the Earth's centre, equatorial radii.
  double rhoCosPhi = 0;       ///< That times the cosine of the geocentric latitude.
  double rhoSinPhi = 0;       ///< That times the sine of the geocentric latitude.
};

}  // namespace vantrel::ephemeris
