#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

/// Lookups: requests to a web service about a place. They run vantrel-lookup and block until it
/// exits; this program itself links no network library. Errors are those of vantrel-lookup;
/// kExitUnavailable if it or the service is not available.

/// The service and account to use; by default GeoNames with the account of the settings.
struct PlaceService {
  bool google = false;
  std::optional<std::string> username;
  std::optional<std::string> keyFile;
};

/// Returns metres; `nullopt` if the service knows no altitude there.
Expected<std::optional<float>> altitudeOfPlace(LocationCoordinate2D place,
                                               const PlaceService& service = {});

/// Fails with kExitBadData unless the system's time-zone database has the zone.
Expected<TimeZone> timeZoneOfPlace(LocationCoordinate2D place, const PlaceService& service = {});

/// The value of an option that requests a lookup.
inline constexpr const char* kLookUp = "auto";

}  // namespace vantrel::cli
