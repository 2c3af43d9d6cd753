#include "cli/exchange/PlanImport.h"

#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "base/Iso8601.h"
#include "cli/JsonText.h"
#include "cli/Progress.h"
#include "cli/exchange/CalendarReader.h"
#include "cli/exchange/DraftMerge.h"
#include "cli/exchange/InputText.h"
#include "cli/exchange/JsonReader.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "common/TerminalText.h"
#include "platform/text/Utf8.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kLongestReason = 500;

std::string nameOf(const ExchangeOptions& options) {
  return options.file == ExchangeOptions::kStandardStream ? "standard input" : options.file;
}

/// As it was named, else as the text begins.
Expected<ExchangeFormat> formatOf(const ExchangeOptions& options, std::string_view text) {
  auto format = options.format ? options.format : formatOfFileName(options.file);
  if (!format) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    const char first = begin == std::string_view::npos ? '\0' : text[begin];
    format = first == '[' || first == '{' ? ExchangeFormat::kJson : ExchangeFormat::kCalendar;
  }
  if (*format == ExchangeFormat::kJson || *format == ExchangeFormat::kCalendar) return *format;
  return tl::unexpected(failure(kExitUsage, std::string(nameOfFormat(*format)),
                                "is written only; plans are read from ics and json"));
}

Expected<PlanDrafts> readDrafts(const ExchangeOptions& options, Console& console) {
  const bool isTyped = options.file == ExchangeOptions::kStandardStream && ::isatty(STDIN_FILENO);
  if (isTyped) console.note("reading from the terminal; Ctrl-D ends");
  const auto text = inputText(options.file);
  if (!text) return tl::unexpected(text.error());
  const auto format = formatOf(options, *text);
  if (!format) return tl::unexpected(format.error());
  Progress progress("Reading", console);
  auto drafts = *format == ExchangeFormat::kJson
                    ? draftsFromJson(*text)
                    : draftsFromCalendar(*text, [&](std::size_t done, std::size_t all) {
                        progress.report(done, all);
                      });
  const auto checked = drafts.and_then([](const auto& all) { return checkIdentifiers(all.plans); });
  if (checked) return drafts;
  // What a file calls its zones and keys may be as long as the file.
  return tl::unexpected(
      failure(kExitBadData, nameOf(options),
              std::string(beginning(checked.error().localizedDescription, kLongestReason))));
}

/// Null where a dry run finds no store; it makes none.
Expected<ManagedObjectContext*> contextFor(const ExchangeOptions& options) {
  if (!options.isDryRun) return contextForWriting();
  auto context = contextForReading();
  if (!context && exitCodeForError(context.error()) == kExitMissing) return nullptr;
  return context;
}

Expected<std::vector<MergedPlan>> merge(const PlanDrafts& drafts, ManagedObjectContext* context,
                                        bool isDryRun, Console& console) {
  Progress progress("Comparing", console);
  return mergeDrafts(drafts.plans, context, isDryRun,
                     [&](std::size_t done, std::size_t all) { progress.report(done, all); });
}

Json jsonOf(const MergedPlan& plan) {
  const auto date = plan.date ? iso8601String(*plan.date) : std::string();
  return {{"uniqueIdentifier", orNull(plan.identifier)},
          {"name", orNull(plan.name)},
          {"date", date.empty() ? Json(nullptr) : Json(date)}};
}

std::string jsonOf(const std::vector<MergedPlan>& plans, const PlanDrafts& drafts, bool isDryRun) {
  Json answer = {{"added", Json::array()},
                 {"changed", Json::array()},
                 {"skipped", Json::array()},
                 {"notes", drafts.notes},
                 {"dryRun", isDryRun}};
  constexpr std::array kKeys = {"added", "changed", "skipped"};
  for (const auto& plan : plans) {
    answer[kKeys[static_cast<std::size_t>(plan.outcome)]].push_back(jsonOf(plan));
  }
  return jsonText(answer);
}

/// "added    2026-07-16 05:52  Sunrise  4D2F0F13"
std::string lineOf(const MergedPlan& plan, const Console& console) {
  std::string when = "--";
  if (plan.date) {
    when = wallText(*plan.date, TimeZone::timeZoneOrDefault(plan.timezone));
  }
  std::string line = plan.outcome == MergeOutcome::kAdded ? "added    " : "changed  ";
  line += when + "  " + console.bold(plan.name ? printable(*plan.name) : "--");
  if (plan.identifier) {
    line += "  " + console.dim(shortIdentifier(*plan.identifier));
  }
  return line + "\n";
}

void tellOutcome(const std::vector<MergedPlan>& plans, const PlanDrafts& drafts, bool isDryRun,
                 Console& console) {
  if (console.isJson()) {
    console.print(jsonOf(plans, drafts, isDryRun));
    return;
  }
  for (const auto& plan : plans) {
    if (plan.outcome != MergeOutcome::kSkipped) console.print(lineOf(plan, console));
  }
  const auto count = [&](MergeOutcome outcome) {
    return std::to_string(std::count_if(plans.begin(), plans.end(),
                                        [&](const auto& plan) { return plan.outcome == outcome; }));
  };
  console.print(count(MergeOutcome::kAdded) + " added, " + count(MergeOutcome::kChanged) +
                " changed, " + count(MergeOutcome::kSkipped) + " skipped" +
                (isDryRun ? " (dry run: nothing was written)\n" : "\n"));
  for (const auto& note : drafts.notes) console.tell("vantrel: plan import: " + note + "\n");
}

}  // namespace

int importPlans(const ExchangeOptions& options, Console& console) {
  const auto drafts = readDrafts(options, console);
  if (!drafts) return console.fail(drafts.error());
  const auto context = contextFor(options);
  if (!context) return console.fail(context.error());
  const auto merged = merge(*drafts, *context, options.isDryRun, console);
  if (!merged) return console.fail(merged.error());
  if (!options.isDryRun) {
    const auto saved = (*context)->save();
    if (!saved) return console.fail(saved.error());
  }
  tellOutcome(*merged, *drafts, options.isDryRun, console);
  return kExitDone;
}

}  // namespace vantrel::cli
