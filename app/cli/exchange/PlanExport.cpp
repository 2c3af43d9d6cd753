#include <unistd.h>

#include <optional>
#include <string>

#include "cli/exchange/ExchangeCommands.h"
#include "cli/exchange/PlanWriters.h"
#include "cli/plan/PlanJson.h"
#include "cli/plan/PlanSelection.h"
#include "common/ExitCode.h"
#include "common/OutputFile.h"
#include "common/TerminalText.h"

namespace vantrel::cli {

namespace {

/// Returns the number of plans that are left out.
std::size_t write(PlanSource& plans, ExchangeFormat format, const TextSink& print) {
  switch (format) {
    case ExchangeFormat::kJson:
      printJson(plans, print);
      return 0;
    case ExchangeFormat::kCsv:
      writeCsv(plans, print);
      return 0;
    case ExchangeFormat::kGpx:
      return writeGpx(plans, print);
    case ExchangeFormat::kKml:
      writeKml(plans, print);
      return 0;
    case ExchangeFormat::kCalendar:
      break;
  }
  writeCalendar(plans, print);
  return 0;
}

/// Writes to standard output, without control characters if that is a terminal.
std::size_t writeToConsole(PlanSource& plans, ExchangeFormat format, Console& console) {
  if (!::isatty(STDOUT_FILENO)) {
    return write(plans, format, [&](std::string_view text) { console.print(text); });
  }
  // Pieces may end within a character.
  std::string all;
  const std::size_t leftOut = write(plans, format, [&](std::string_view text) { all += text; });
  console.print(printableFile(all));
  return leftOut;
}

Expected<std::size_t> writeFile(PlanSource& plans, ExchangeFormat format, const std::string& name) {
  OutputFile file(name);
  if (const auto opened = file.open(); !opened) return tl::unexpected(opened.error());
  const std::size_t leftOut =
      write(plans, format, [&](std::string_view text) { file.write(text); });
  // An incomplete file is not published.
  if (const auto& failure = plans.failure()) return tl::unexpected(*failure);
  return file.finish().map([&] { return leftOut; });
}

}  // namespace

int exportPlans(const ExchangeOptions& options, Console& console) {
  const bool isFile = options.file != ExchangeOptions::kStandardStream;
  auto format = options.format;
  if (!format && isFile) {
    format = formatOfFileName(options.file);
    if (!format) {
      return console.fail(failure(kExitUsage, options.file,
                                  "unknown format; expected .ics, .json, .csv, .gpx or .kml, or "
                                  "--format"));
    }
  }
  if (!format) format = console.isJson() ? ExchangeFormat::kJson : ExchangeFormat::kCalendar;
  const auto plans = PlanSource::open(options.range);
  if (!plans) return console.fail(plans.error());
  const auto leftOut = isFile ? writeFile(**plans, *format, options.file)
                              : writeToConsole(**plans, *format, console);
  if (!leftOut) return console.fail(leftOut.error());
  if (const auto& failure = (*plans)->failure()) return console.fail(*failure);
  if (*leftOut > 0) {
    console.tell("vantrel: plan export: left out " + std::to_string(*leftOut) +
                 (*leftOut == 1 ? " plan" : " plans") + " without a place\n");
  }
  return kExitDone;
}

}  // namespace vantrel::cli
