#include "time/PtPosition.h"

#include <cmath>

namespace vantrel::ephemeris {

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr double kAxisRatio = 0.99664719;
constexpr double kEquatorialRadius = 6378137.0;

}  // namespace

PtPosition::PtPosition(double latitudeDegrees, double longitudeDegrees, double altitudeMetres,
                       double heightMetres)
    : latitude(latitudeDegrees),
      longitude(longitudeDegrees),
      altitude(altitudeMetres),
      heightAboveHorizon(heightMetres) {
  CalcObserverCoords();
}

void PtPosition::CalcObserverCoords() {
  const double phi = latitude * kRadiansPerDegree;
  const double u = std::atan(kAxisRatio * std::tan(phi));
  const double h = altitude / kEquatorialRadius;
  rhoSinPhi = kAxisRatio * std::sin(u) + h * std::sin(phi);
  rhoCosPhi = std::cos(u) + h * std::cos(phi);
  rho = std::sqrt(rhoSinPhi * rhoSinPhi + rhoCosPhi * rhoCosPhi);
}

}  // namespace vantrel::ephemeris
