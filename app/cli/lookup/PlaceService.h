#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "base/LocationCoordinate2D.h"
#include "platform/text/TimeZone.h"

namespace vantrel::cli {

/// What a web service knows of a place. It is asked by vantrel-lookup, a program of its own, so
/// that no other command pays for the network. Nothing else in this program reaches it.

/// Who is asked, and with whose account; by default GeoNames, with that of the settings.
struct PlaceService {
  bool google = false;
  std::optional<std::string> username;
  std::optional<std::string> keyFile;
};

/// Metres; nothing where the service knows none. kExitUnavailable when it does not answer.
Expected<std::optional<float>> altitudeOfPlace(LocationCoordinate2D place,
                                               const PlaceService& service = {});

/// One of the system's time-zone database; kExitBadData for a name that is not in it.
Expected<TimeZone> timeZoneOfPlace(LocationCoordinate2D place, const PlaceService& service = {});

/// The word that asks for a value to be looked up.
inline constexpr const char* kLookUp = "auto";

}  // namespace vantrel::cli
