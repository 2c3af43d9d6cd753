#include "today/Options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <memory>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "common/TerminalText.h"
#include "today/reminders/ReminderSchedule.h"

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

/// Help without the remarks that the library adds to options.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string& text = option->get_option_text();
    return text.empty() ? "" : " " + text;
  }
};

}  // namespace

void Options::describe(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormatter>());
  app.name("vantrel-today");
  app.description("Shows the next plans in a window, or draws them into a picture.");
  app.set_version_flag("--version", "vantrel-today " VANTREL_VERSION, "Show the version and exit");
  app.set_help_flag("-h,--help", "Show this help and exit");
  auto* open = app.add_option("--open", options.link,
                              "Show the plan that a link names (vantrel://plan?id=...)")
                   ->option_text("LINK");
  auto* autostart = app.add_option_function<std::string>(
                           "--autostart",
                           [&options](const std::string& text) {
                             if (text != "on" && text != "off") {
                               throw CLI::ValidationError("--autostart", "takes on or off");
                             }
                             options.autostart = text == "on";
                           },
                           "Open the window with every session, or no more, and exit")
                        ->option_text("on|off");
  auto* remind =
      app.add_option_function<std::string>(
             "--remind",
             [&options](const std::string& text) {
               options.reminders = parseLeadTimes(text);
               if (options.reminders) return;
               throw CLI::ValidationError(
                   "--remind", "expected times of 1m to 7d such as 1d,30m, or off, got \"" +
                                   printable(text) + "\"");
             },
             "Remind of each plan that long before it (30m, 2h, 1d or a list of them), or no more, "
             "and exit; reminders appear while the window or the service runs")
          ->option_text("TIMES|off");
  auto* service = app.add_flag("--service", options.service,
                               "Wait for the desktop to tell what to show (it starts the program "
                               "so)");
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
  open->excludes(autostart)->excludes(service);
  render->excludes(autostart)->excludes(service);
  service->excludes(autostart);
  remind->excludes(open)->excludes(render)->excludes(service)->excludes(autostart);
  app.add_option("--scale", options.scale, "Pixels of the picture per logical pixel, 0.25 to 8")
      ->option_text("N")
      ->check([](const std::string& text) {
        double factor = 0;
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, factor);
        const bool fits = factor >= kSmallestScale && factor <= kLargestScale;
        return read.ec == std::errc() && read.ptr == end && fits ? std::string()
                                                                 : "takes a number, 0.25 to 8";
      })
      ->needs(render);
  app.add_flag("--expanded", options.expanded, "Begin with all rows, not two")->excludes(open);
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
      "A window that is open already comes to the front; with --dark, --light or --system-version "
      "a new one opens.\n"
      "Keys: F5 looks for new plans, Tab and Enter open one; Ctrl+C copies the link of a plan that "
      "is shown, Escape closes it.\n"
      "Exit codes: 0 done, 64 usage, 65 no link to a plan, 66 no store or no such plan in it, 69 "
      "no display, 73 and 74 a file could not be written, 75 the store is in use, 77 no "
      "permission.");
}

std::optional<int> Options::parse(int argc, char** argv, Options& options) {
  CLI::App app;
  describe(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& wanted) {  // help or version
    return app.exit(wanted);
  } catch (const CLI::ParseError& error) {
    logLine("vantrel-today: " + std::string(error.what()) + "; see vantrel-today --help");
    return kExitUsage;
  }
  return std::nullopt;
}

}  // namespace vantrel
