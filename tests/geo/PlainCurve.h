#pragma once

#include <cmath>

#include "base/LocationCoordinate2D.h"
#include "geo/GeodeticCurve.h"

namespace vantrel {

/// The geodetic curve with every formula as it stands in the textbook, one after the other and
/// without a thought of speed: what the calculator's own arrangement is held against.
inline GeodeticCurve plainCurve(LocationCoordinate2D source, double h1,
                                LocationCoordinate2D destination, double h2) {
  constexpr double a = 6378137.0;
  constexpr double f = 0.0033528106647474805;
  constexpr double eSquared = 0.0066943799901413165;
  constexpr double pi = 3.14159265358979323846;
  constexpr double radians = 0.017453292519943295;
  constexpr double degrees = 57.29577951308232;
  using namespace std;
  const auto square = [](double x) { return x * x; };

  const double phi1 = source.latitude * radians;
  const double phi2 = destination.latitude * radians;
  const double lambda1 = source.longitude * radians;
  const double lambda2 = destination.longitude * radians;
  const double major = a + ((h1 + h2) / 2) * (1 + f * sin((phi1 + phi2) / 2));
  const double minor = major * (1 - f);
  const double ePrimeSquared = (major * major - minor * minor) / (minor * minor);

  const double L = lambda2 - lambda1;
  const double U1 = atan((1 - f) * tan(phi1));
  const double U2 = atan((1 - f) * tan(phi2));
  double lambda = L;
  double sinSigma = 0;
  double cosSigma = 0;
  double sigma = 0;
  double cosSqAlpha = 0;
  double cos2SigmaM = 0;
  bool converged = false;
  for (int pass = 0; pass < 20 && !converged; ++pass) {
    const double east = cos(U2) * sin(lambda);
    const double north = cos(U1) * sin(U2) - sin(U1) * cos(U2) * cos(lambda);
    const double sinSqSigma = east * east + north * north;
    sinSigma = sqrt(sinSqSigma);
    cosSigma = sin(U1) * sin(U2) + cos(U1) * cos(U2) * cos(lambda);
    sigma = atan2(sinSigma, cosSigma);
    const double sinAlpha = sinSqSigma == 0 ? 0 : cos(U1) * cos(U2) * sin(lambda) / sinSigma;
    const double cosAlpha = cos(asin(sinAlpha));
    cosSqAlpha = cosAlpha * cosAlpha;
    cos2SigmaM = cosSqAlpha == 0 ? 0 : cosSigma - 2 * sin(U1) * sin(U2) / cosSqAlpha;
    const double C = f / 16 * cosSqAlpha * (4 + f * (4 - 3 * cosSqAlpha));
    const double next =
        L + (1 - C) * f * sinAlpha *
                (sigma +
                 C * sinSigma * (cos2SigmaM + C * cosSigma * (2 * cos2SigmaM * cos2SigmaM - 1)));
    converged = pass >= 2 && abs((next - lambda) / next) < 1e-13;
    lambda = next;
  }

  const double uSq = cosSqAlpha * ePrimeSquared;
  const double A = 1 + uSq / 16384 * (4096 + uSq * (-768 + uSq * (320 - 175 * uSq)));
  const double B = uSq / 1024 * (256 + uSq * (-128 + uSq * (74 - 47 * uSq)));
  const double deltaSigma = B * sinSigma *
                            (cos2SigmaM + B / 4 *
                                              (cosSigma * (2 * cos2SigmaM * cos2SigmaM - 1) -
                                               B / 6 * cos2SigmaM * (4 * sinSigma * sinSigma - 3) *
                                                   (4 * cos2SigmaM * cos2SigmaM - 3)));
  const double s = minor * A * (sigma - deltaSigma);

  double alpha1 = phi1 > phi2 ? pi : phi1 < phi2 ? 0 : -1;
  double alpha2 = phi1 > phi2 ? 0 : phi1 < phi2 ? pi : -1;
  if (converged) {
    alpha1 = atan2(cos(U2) * sin(lambda), cos(U1) * sin(U2) - sin(U1) * cos(U2) * cos(lambda));
    alpha2 = atan2(cos(U1) * sin(lambda), cos(U1) * sin(U2) * cos(lambda) - sin(U1) * cos(U2)) + pi;
    alpha1 += alpha1 < 0 ? 2 * pi : 0;
    alpha2 += alpha2 < 0 ? 2 * pi : 0;
  }
  alpha1 -= alpha1 >= 2 * pi ? 2 * pi : 0;
  alpha2 -= alpha2 >= 2 * pi ? 2 * pi : 0;
  const double D = sqrt(s * s + (h2 - h1) * (h2 - h1));

  double elevation = 0;
  if (alpha1 > 0) {
    const double N1 = major / sqrt(1 - eSquared * square(sin(phi1)));
    const double N2 = major / sqrt(1 - eSquared * square(sin(phi2)));
    const double X1 = (N1 + h1) * cos(phi1) * cos(lambda1);
    const double Y1 = (N1 + h1) * cos(phi1) * sin(lambda1);
    const double Z1 = (N1 * (1 - eSquared) + h1) * sin(phi1);
    const double X2 = (N2 + h2) * cos(phi2) * cos(lambda2);
    const double Y2 = (N2 + h2) * cos(phi2) * sin(lambda2);
    const double Z2 = (N2 * (1 - eSquared) + h2) * sin(phi2);
    const double up =
        (Z2 - Z1) * sin(phi1) + cos(phi1) * ((X2 - X1) * cos(lambda1) + (Y2 - Y1) * sin(lambda1));
    const double zenith = pi / 2 - asin(up / D);
    const double M = major * (1 - eSquared) / pow(1 - eSquared * square(sin(phi1)), 1.5);
    const double R = N1 * M / (N1 * square(cos(alpha1)) + M * square(sin(alpha1)));
    elevation = 90 - (zenith - s / (14 * R)) * degrees;
  }
  return {alpha1 * degrees, alpha2 * degrees, static_cast<float>(D), elevation, converged};
}

}  // namespace vantrel
