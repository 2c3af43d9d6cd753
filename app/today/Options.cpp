#include "today/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>

#include "base/Log.h"
#include "cli/ExitCode.h"

namespace vantrel {

namespace {

constexpr int kSmallestSide = 100;
constexpr int kLargestSide = 10000;
constexpr double kSmallestScale = 0.25;
constexpr double kLargestScale = 8;

/// "WxH", whole logical pixels.
bool parseSize(const std::string& text, int& width, int& height) {
  const char* end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, width);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') return false;
  const auto second = std::from_chars(first.ptr + 1, end, height);
  if (second.ec != std::errc() || second.ptr != end) return false;
  return std::min(width, height) >= kSmallestSide && std::max(width, height) <= kLargestSide;
}

void describe(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "vantrel-today " VANTREL_VERSION);
  app.set_help_flag("-h,--help", "Show this help and exit");
  auto* render =
      app.add_option("--render", options.renderFile,
                     "Draw the card into a PNG file, without a display (- is standard output)")
          ->option_text("FILE.png");
  app.add_option_function<std::string>(
         "--size",
         [&options](const std::string& text) {
           if (parseSize(text, options.width, options.height)) return;
           throw CLI::ValidationError("--size", "takes WIDTHxHEIGHT, each 100 to 10000");
         },
         "The picture's size in logical pixels; usually as large as the card needs")
      ->option_text("WxH")
      ->needs(render);
  app.add_option("--scale", options.scale, "Pixels of the picture per logical pixel, 0.25 to 8")
      ->option_text("N")
      ->check([](const std::string& text) {
        double scale = 0;
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, scale);
        const bool fits = scale >= kSmallestScale && scale <= kLargestScale;
        return read.ec == std::errc() && read.ptr == end && fits ? std::string()
                                                                 : "takes a number, 0.25 to 8";
      })
      ->needs(render);
  app.add_flag("--expanded", options.expanded, "Begin with all rows, not two");
  auto* dark = app.add_flag_callback(
      "--dark", [&options] { options.dark = true; }, "Dark, whatever the desktop is");
  app.add_flag_callback(
         "--light", [&options] { options.dark = false; }, "Light, whatever the desktop is")
      ->excludes(dark);
  app.add_option("--system-version", options.systemVersion,
                 "Behave as on that version of the phone's system (17.0); before 10 the widget "
                 "has one mode, and two columns where there is room")
      ->option_text("V")
      ->check([](const std::string& text) {
        int major = 0;
        const auto end = std::from_chars(text.data(), text.data() + text.size(), major);
        const bool plain = text.find_first_not_of("0123456789.") == std::string::npos;
        return plain && end.ec == std::errc() && major > 0
                   ? std::string()
                   : std::string("takes a version like 9.3 or 17.0");
      });
  app.footer(
      "Keys: F5 looks for new plans, Tab and Enter open one.\n"
      "Exit codes: 0 done, 64 usage, 66 no store, 69 no display, 73 and 74 the picture could "
      "not be written.");
}

}  // namespace

std::optional<int> Options::parse(int argc, char** argv, Options& options) {
  CLI::App app("Shows the next plans in a window, or draws them into a picture.", "vantrel-today");
  describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& wanted) {  // help or version
    return app.exit(wanted);
  } catch (const CLI::ParseError& error) {
    logLine("vantrel-today: " + std::string(error.what()) + "; see vantrel-today --help");
    return cli::kExitUsage;
  }
  return std::nullopt;
}

}  // namespace vantrel
