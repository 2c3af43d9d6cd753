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

struct Question {
  std::optional<double> latitude;
  std::optional<double> longitude;
  PlaceService service;

  LocationCoordinate2D place() const { return {*latitude, *longitude}; }
};

Json jsonOfAnswer(const Question& question, const char* key, Json value) {
  return {{"latitude", *question.latitude},
          {"longitude", *question.longitude},
          {key, std::move(value)},
          {"service", question.service.google ? "google" : "geonames"}};
}

int showAltitude(const Question& question, Console& console) {
  // They say in which units, and are asked before anybody far away is.
  const auto settings = settingsForReading();
  if (!settings) return console.fail(settings.error());
  const auto found = altitudeOfPlace(question.place(), question.service);
  if (!found) return console.fail(found.error());
  if (!found->has_value()) {
    return console.fail(
        failure(kExitUnavailable, "lookup altitude", "the service knows none there"));
  }
  const float altitude = **found;
  console.print(console.isJson()
                    ? jsonText(jsonOfAnswer(question, "altitude", jsonOfAltitude(altitude)))
                    : PinLocation().stringForAltitude(altitude) + "\n");
  return kExitDone;
}

int showTimeZone(const Question& question, Console& console) {
  const auto zone = timeZoneOfPlace(question.place(), question.service);
  if (!zone) return console.fail(zone.error());
  console.print(console.isJson() ? jsonText(jsonOfAnswer(question, "timezone", zone->name()))
                                 : zone->name() + "\n");
  return kExitDone;
}

/// Gives the option that names an account.
CLI::Option* addQuestion(CLI::App& parser, Question& question) {
  addValueOption(parser, "LAT", question.latitude, &latitudeFromArgument, "",
                 "Latitude: -90 to 90 degrees, north positive");
  addValueOption(parser, "LON", question.longitude, &longitudeFromArgument, "",
                 "Longitude: -180 to 180 degrees, east positive");
  addTextOption(parser, "--key-file", question.service.keyFile, "FILE",
                "Holds the key of your own account on its first line; - is standard input");
  return addValueOption(parser, "--username", question.service.username, &filledTextFromArgument,
                        "NAME", "Your own account at GeoNames, instead of the program's");
}

constexpr const char* kWhoIsAsked =
    "The place is sent to secure.geonames.org (or maps.googleapis.com), and to nobody else.\n"
    "An account for every lookup: vantrel defaults write --standard lookup_username NAME,\n"
    "and likewise lookup_keyFile, lookup_googleKeyFile: the files that hold your keys.";

}  // namespace

void fillLookupCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  parser.footer(kWhoIsAsked);
  const auto [altitude, asked] =
      addCommand(parser, session, "altitude", "The altitude of the ground there", &showAltitude);
  auto* username = addQuestion(altitude, asked);
  altitude.add_flag("--google", asked.service.google, "Ask Google; needs a key of your own")
      ->excludes(username);
  const auto zone =
      addCommand(parser, session, "timezone", "The time zone that it lies in", &showTimeZone);
  addQuestion(zone.parser, zone.options);
}

}  // namespace vantrel::cli
