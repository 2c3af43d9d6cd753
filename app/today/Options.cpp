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

/// Parses "WxH", in whole logical pixels.
bool parseSize(const std::string& text, int& width, int& height) {
  const char* end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, width);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') return false;
  const auto second = std::from_chars(first.ptr + 1, end, height);
  if (second.ec != std::errc() || second.ptr != end) return false;
  return std::min(width, height) >= kSmallestSide && std::max(width, height) <= kLargestSide;
}

/// Omits what CLI11 adds to the description of an option.
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
  app.description("Show the next plans in a window, or draw them as a picture");
  app.set_version_flag("--version", "vantrel-today " VANTREL_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Show this help and exit");
  auto* open = app.add_option("--open", options.link,
                              "Show the plan that a link names (vantrel://plan?id=...)")
                   ->option_text("LINK");
  auto* autostart =
      app.add_option_function<std::string>(
             "--autostart",
             [&options](const std::string& text) {
               if (text != "on" && text != "off") {
                 throw CLI::ValidationError("--autostart",
                                            "expected on or off, got \"" + printable(text) + "\"");
               }
               options.autostart = text == "on";
             },
             "Start with each session, or stop doing so, and exit")
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
             "Set how long before each plan you are reminded (30m, 2h, 1d or a list such as "
             "1d,30m), "
             "and exit; reminders appear only while the window or the service runs")
          ->option_text("TIMES|off");
  auto* service = app.add_flag("--service", options.service,
                               "Run without a window until the desktop asks for one; used by the "
                               "desktop");
  auto* render =
      app.add_option("--render", options.renderFile,
                     "Write a PNG picture of the card; needs no display (- is standard output)")
          ->option_text("FILE.png");
  app.add_option_function<std::string>(
         "--size",
         [&options](const std::string& text) {
           if (parseSize(text, options.width, options.height)) return;
           throw CLI::ValidationError(
               "--size",
               "expected WIDTHxHEIGHT, each from 100 to 10000, got \"" + printable(text) + "\"");
         },
         "Size of the picture in logical pixels; default: the size of the card")
      ->option_text("WxH")
      ->needs(render);
  open->excludes(autostart)->excludes(service);
  render->excludes(autostart)->excludes(service);
  service->excludes(autostart);
  remind->excludes(open)->excludes(render)->excludes(service)->excludes(autostart);
  app.add_option("--scale", options.scale, "Pixels per logical pixel, 0.25 to 8; default: 1")
      ->option_text("N")
      ->check([](const std::string& text) {
        double factor = 0;
        const char* end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, factor);
        const bool fits = factor >= kSmallestScale && factor <= kLargestScale;
        return read.ec == std::errc() && read.ptr == end && fits
                   ? std::string()
                   : "expected 0.25 to 8, got \"" + printable(text) + "\"";
      })
      ->needs(render);
  app.add_flag("--expanded", options.expanded, "Show up to five plans instead of two")
      ->excludes(open);
  auto* dark = app.add_flag_callback(
      "--dark", [&options] { options.dark = true; }, "Use dark colours, whatever the desktop uses");
  app.add_flag_callback(
         "--light", [&options] { options.dark = false; },
         "Use light colours, whatever the desktop uses")
      ->excludes(dark);
  app.add_option(
         "--system-version", options.systemVersion,
         "Look as on that version of the phone's system, such as 17.0; before 10 the widget "
         "always shows all rows, in two columns if there is room")
      ->option_text("V")
      ->check([](const std::string& text) {
        int major = 0;
        const auto end = std::from_chars(text.data(), text.data() + text.size(), major);
        const bool plain = text.find_first_not_of("0123456789.") == std::string::npos;
        return plain && end.ec == std::errc() && major > 0
                   ? std::string()
                   : "expected a version such as 9.3 or 17.0, got \"" + printable(text) + "\"";
      });
  app.footer(
      "If a window is already open, it comes to the front; --dark, --light and --system-version "
      "open another.\n"
      "Keys: F5 reads the plans again; Tab and Enter open one; Ctrl+C copies the link of the plan "
      "shown; Escape closes it.\n"
      "Exit codes: 0 done, 64 usage, 65 not a link of a plan, 66 no store or no such plan, 69 no "
      "display, 73 and 74 cannot write a file, 75 the store is locked, 77 permission denied.");
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
