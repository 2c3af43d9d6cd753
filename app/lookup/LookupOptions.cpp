#include "lookup/LookupOptions.h"

#include <QHostAddress>
#include <QUrl>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "common/ExitCode.h"

namespace vantrel {

namespace {

std::optional<double> number(const std::string& text, double least, double most) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  if (read.ec != std::errc() || read.ptr != end || !(value >= least && value <= most)) {
    return std::nullopt;
  }
  return value;
}

void addDegrees(CLI::App& app, const std::string& name, double& target, double limit) {
  const auto keep = [name, &target, limit](const CLI::results_t& values) {
    const auto degrees = number(values.front(), -limit, limit);
    if (!degrees) throw CLI::ValidationError(name, "expected degrees");
    target = *degrees;
    return true;
  };
  app.add_option(name, keep)->required();
}

void describe(CLI::App& app, LookupOptions& options) {
  app.set_version_flag("--version", "vantrel-lookup " VANTREL_VERSION);
  app.add_option_function<std::string>(
         "SUBJECT",
         [&options](const std::string& subject) {
           if (subject != "altitude" && subject != "timezone") {
             throw CLI::ValidationError("SUBJECT", "expected altitude or timezone");
           }
           options.subject = subject == "altitude" ? LookupOptions::Subject::kAltitude
                                                   : LookupOptions::Subject::kTimeZone;
         },
         "altitude or timezone")
      ->required();
  constexpr double kMostLatitude = 90;
  constexpr double kMostLongitude = 180;
  addDegrees(app, "LAT", options.place.latitude, kMostLatitude);
  addDegrees(app, "LON", options.place.longitude, kMostLongitude);
  app.add_flag("--google", options.google, "Ask Google, not GeoNames");
  app.add_option("--username", options.username, "Your account");
  app.add_option("--key-file", options.keyFile, "File with its key");
}

/// The request contains the account, so it must be encrypted unless it stays on this machine.
bool isAllowedAddress(const std::string& text) {
  const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(text), QUrl::StrictMode);
  const bool isLocal = QHostAddress(url.host()).isLoopback();
  return url.isValid() && !url.host().isEmpty() &&
         (url.scheme() == QLatin1String("https") ||
          (url.scheme() == QLatin1String("http") && isLocal));
}

}  // namespace

std::optional<int> LookupOptions::parse(int argc, char** argv, LookupOptions& options) {
  CLI::App app("Asks a web service about a place, for vantrel lookup; answers in JSON",
               "vantrel-lookup");
  describe(app, options);
  try {
    app.parse(argc, argv);
    if (options.google && options.subject != Subject::kAltitude) {
      throw CLI::ValidationError("--google", "knows altitudes only");
    }
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : kExitUsage;
  }
  return std::nullopt;
}

Expected<void> LookupOptions::readEnvironment() {
  if (const char* text = std::getenv("VANTREL_LOOKUP_ADDRESS"); text && *text) {
    if (!isAllowedAddress(text)) {
      return tl::unexpected(failure(kExitUsage, "VANTREL_LOOKUP_ADDRESS",
                                    "expected an https address, or http to this machine"));
    }
    address = text;
  }
  if (const char* text = std::getenv("VANTREL_LOOKUP_WAIT"); text && *text) {
    constexpr double kMostWait = 60;
    const auto seconds = number(text, 0, kMostWait);
    if (!seconds) {
      return tl::unexpected(
          failure(kExitUsage, "VANTREL_LOOKUP_WAIT", "expected seconds, 0 to 60"));
    }
    wait = *seconds;
  }
  return {};
}

}  // namespace vantrel
