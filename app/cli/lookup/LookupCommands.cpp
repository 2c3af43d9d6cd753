#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "cli/lookup/PlaceService.h"
#include "cli/pin/ObserverText.h"
#include "cli/settings/SettingsAccess.h"
#include "common/ExitCode.h"
#include "geo/PinLocation.h"

namespace vantrel::cli {

namespace {

struct LookupRequest {
  std::optional<double> latitude;
  std::optional<double> longitude;
  PlaceService service;

  LocationCoordinate2D place() const { return {*latitude, *longitude}; }
};

Json jsonOfAnswer(const LookupRequest& request, const char* key, Json value) {
  return {{"latitude", *request.latitude},
          {"longitude", *request.longitude},
          {key, std::move(value)},
          {"service", request.service.google ? "google" : "geonames"}};
}

int showAltitude(const LookupRequest& request, Console& console) {
  // The settings choose the units; check them before any network request.
  const auto settings = settingsForReading();
  if (!settings) return console.fail(settings.error());
  const auto found = altitudeOfPlace(request.place(), request.service);
  if (!found) return console.fail(found.error());
  if (!found->has_value()) {
    return console.fail(
        failure(kExitUnavailable, "lookup altitude", "the service knows no altitude there"));
  }
  const float altitude = **found;
  console.print(console.isJson()
                    ? jsonText(jsonOfAnswer(request, "altitude", jsonOfAltitude(altitude)))
                    : PinLocation().stringForAltitude(altitude) + "\n");
  return kExitDone;
}

int showTimeZone(const LookupRequest& request, Console& console) {
  const auto zone = timeZoneOfPlace(request.place(), request.service);
  if (!zone) return console.fail(zone.error());
  console.print(console.isJson() ? jsonText(jsonOfAnswer(request, "timezone", zone->name()))
                                 : zone->name() + "\n");
  return kExitDone;
}

/// Returns the option --username.
CLI::Option* addRequestOptions(CLI::App& parser, LookupRequest& request) {
  addValueOption(parser, "LAT", request.latitude, &latitudeFromArgument, "",
                 "Latitude: -90 to 90 degrees, north positive");
  addValueOption(parser, "LON", request.longitude, &longitudeFromArgument, "",
                 "Longitude: -180 to 180 degrees, east positive");
  addTextOption(parser, "--key-file", request.service.keyFile, "FILE",
                "File with the key of your account on its first line; - is standard input");
  return addValueOption(parser, "--username", request.service.username, &filledTextFromArgument,
                        "NAME", "Your account at GeoNames, instead of the program's");
}

constexpr const char* kFooter =
    "Only secure.geonames.org (or maps.googleapis.com) receives the place.\n"
    "To use your account always: vantrel defaults write --standard lookup_username NAME,\n"
    "and likewise lookup_keyFile and lookup_googleKeyFile, the files with your keys.";

}  // namespace

void fillLookupCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  parser.footer(kFooter);
  const auto [altitude, request] =
      addCommand(parser, session, "altitude", "Show the altitude of the ground", &showAltitude);
  auto* username = addRequestOptions(altitude, request);
  altitude.add_flag("--google", request.service.google, "Ask Google; requires your own key")
      ->excludes(username);
  const auto zone = addCommand(parser, session, "timezone", "Show the time zone", &showTimeZone);
  addRequestOptions(zone.parser, zone.options);
}

}  // namespace vantrel::cli
