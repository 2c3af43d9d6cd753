#include "geo/GeodeticCurve.h"

namespace vantrel {

GeodeticCurve::GeodeticCurve(double startAzimuth, double endAzimuth, float distance,
                             double apparentElevation, bool converged)
    : startAzimuth_(startAzimuth),
      endAzimuth_(endAzimuth),
      distance_(static_cast<double>(distance)),
      apparentElevation_(apparentElevation),
      converged_(converged) {}

}  // namespace vantrel
