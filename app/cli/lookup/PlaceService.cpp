#include "cli/lookup/PlaceService.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/JsonText.h"
#include "cli/lookup/ChildProgram.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

std::vector<std::string> argumentsFor(const std::string& subject, LocationCoordinate2D place,
                                      const PlaceService& service) {
  std::vector<std::string> arguments;
  if (service.google) arguments.emplace_back("--google");
  if (service.username) arguments.push_back("--username=" + *service.username);
  if (service.keyFile) arguments.push_back("--key-file=" + *service.keyFile);
  // Behind "--" a sign begins no option.
  arguments.insert(arguments.end(), {"--", subject, fmt::format("{:.6f}", place.latitude),
                                     fmt::format("{:.6f}", place.longitude)});
  return arguments;
}

/// The program that reaches the network: beside this program as it is built, or under libexec;
/// never one from the current folder or the PATH.
Expected<std::filesystem::path> lookupProgram() {
  constexpr const char* kName = "vantrel-lookup";
  std::error_code error;
  const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* place : {".", VANTREL_LIBEXEC_FROM_BIN}) {
    const auto program = (folder / place / kName).lexically_normal();
    if (!folder.empty() && std::filesystem::is_regular_file(program, error)) return program;
  }
  return tl::unexpected(
      failure(kExitUnavailable, kName, "not installed beside this program; is vantrel whole?"));
}

/// What vantrel-lookup answers: an object with the subject's value.
Expected<Json> lookUp(const std::string& subject, LocationCoordinate2D place,
                      const PlaceService& service) {
  const std::string what = "lookup " + subject;
  constexpr double kMostLatitude = 90;
  constexpr double kMostLongitude = 180;
  // A place that was stored may be anything.
  if (!(std::fabs(place.latitude) <= kMostLatitude &&
        std::fabs(place.longitude) <= kMostLongitude)) {
    return tl::unexpected(failure(kExitBadData, what, "there is no such place on Earth"));
  }
  const auto program = lookupProgram();
  if (!program) return tl::unexpected(program.error());
  const auto ended = outputOfProgram(*program, argumentsFor(subject, place, service));
  if (!ended) return tl::unexpected(ended.error());
  Json answer = Json::parse(ended->output, nullptr, false);
  if (!answer.is_object()) {
    return tl::unexpected(failure(kExitInternal, what, "vantrel-lookup ended without an answer"));
  }
  if (ended->exitCode == kExitDone) return answer;
  // A service may answer in several lines; an error has one.
  return tl::unexpected(failure(static_cast<ExitCode>(ended->exitCode), what,
                                printable(answer.value("error", "failed"))));
}

}  // namespace

Expected<std::optional<float>> altitudeOfPlace(LocationCoordinate2D place,
                                               const PlaceService& service) {
  return lookUp("altitude", place, service).map([](const Json& answer) {
    const auto altitude = answer.find("altitude");
    return altitude != answer.end() && altitude->is_number() ? std::optional(altitude->get<float>())
                                                             : std::nullopt;
  });
}

Expected<TimeZone> timeZoneOfPlace(LocationCoordinate2D place, const PlaceService& service) {
  return lookUp("timezone", place, service).and_then([](const Json& answer) -> Expected<TimeZone> {
    const std::string name = answer.value("timezone", Json()).is_string()
                                 ? answer["timezone"].get<std::string>()
                                 : std::string();
    if (const auto zone = TimeZone::timeZoneWithName(name)) return *zone;
    const std::string why = name.empty() ? "the service knows none there"
                                         : "this system knows no zone \"" + printable(name) + "\"";
    return tl::unexpected(failure(kExitBadData, "lookup timezone", why));
  });
}

}  // namespace vantrel::cli
