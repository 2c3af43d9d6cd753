#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "base/FileDescriptor.h"
#include "cli/JsonText.h"
#include "cli/Progress.h"
#include "cli/exchange/CalendarReader.h"
#include "cli/exchange/DraftMerge.h"
#include "cli/exchange/ExchangeCommands.h"
#include "cli/exchange/JsonReader.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "common/TerminalText.h"
#include "platform/text/Utf8.h"

namespace vantrel::cli {

namespace {

constexpr std::size_t kLongestReason = 500;

bool isFromStandardInput(const ExchangeOptions& options) {
  return options.file == ExchangeOptions::kStandardStream;
}

std::string nameOf(const ExchangeOptions& options) {
  return isFromStandardInput(options) ? "standard input" : options.file;
}

constexpr std::size_t kBlock = 1 << 18;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Returns 0 or an errno. Stops after kMostBytesRead.
int readAll(int file, std::string& text) {
  for (std::size_t filled = 0;;) {
    text.resize(filled + kBlock);
    const ssize_t count = ::read(file, text.data() + filled, kBlock);
    if (count < 0 && errno == EINTR) continue;
    const int error = errno;
    if (count > 0) filled += static_cast<std::size_t>(count);
    if (count > 0 && filled <= kMostBytesRead) continue;
    text.resize(filled);
    return count < 0 ? error : 0;
  }
}

/// Returns the contents without a byte-order mark. Errors: kExitMissing, kExitPermission,
/// kExitInputOutput, or kExitBadData beyond kMostBytesRead.
Expected<std::string> inputText(const ExchangeOptions& options) {
  const bool isStandardInput = isFromStandardInput(options);
  const FileDescriptor opened(isStandardInput ? -1
                                              : ::open(options.file.c_str(), O_RDONLY | O_CLOEXEC));
  const int file = isStandardInput ? STDIN_FILENO : opened.number();
  std::string text;
  const int error = file < 0 ? errno : readAll(file, text);
  if (error != 0) {
    return tl::unexpected(
        failure(exitCodeForReading(error), nameOf(options), std::strerror(error)));
  }
  if (text.size() > kMostBytesRead) {
    return invalidData(nameOf(options),
                       "larger than " + std::to_string(kMostBytesRead >> 20) + " MiB");
  }
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

/// Returns the format from --format, otherwise from the file name, otherwise from the first
/// character.
Expected<ExchangeFormat> formatOf(const ExchangeOptions& options, std::string_view text) {
  auto format = options.format ? options.format : formatOfFileName(options.file);
  if (!format) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    const char first = begin == std::string_view::npos ? '\0' : text[begin];
    format = first == '[' || first == '{' ? ExchangeFormat::kJson : ExchangeFormat::kCalendar;
  }
  if (*format == ExchangeFormat::kJson || *format == ExchangeFormat::kCalendar) return *format;
  return tl::unexpected(failure(kExitUsage, std::string(nameOfFormat(*format)),
                                "cannot be imported; expected ics or json"));
}

Expected<PlanDrafts> readDrafts(const ExchangeOptions& options, Console& console) {
  if (isFromStandardInput(options) && ::isatty(STDIN_FILENO)) {
    console.note("reading from the terminal; press Ctrl-D to finish");
  }
  const auto text = inputText(options);
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
  // Names of zones and keys may be as long as the file.
  return invalidData(nameOf(options),
                     std::string(beginning(checked.error().localizedDescription, kLongestReason)));
}

/// Returns null for a dry run without a store.
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
  return {{"uniqueIdentifier", orNull(plan.identifier)},
          {"name", orNull(plan.name)},
          {"date", jsonOfDate(plan.date)}};
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
  const std::string when =
      plan.date ? wallText(*plan.date, TimeZone::timeZoneOrDefault(plan.timezone)) : kUnknown;
  std::string line = plan.outcome == MergeOutcome::kAdded ? "added    " : "changed  ";
  line += when + "  " + console.bold(shown(plan.name));
  if (plan.identifier) line += "  " + console.dim(shortIdentifier(*plan.identifier));
  return line + "\n";
}

void printReport(const std::vector<MergedPlan>& plans, const PlanDrafts& drafts, bool isDryRun,
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
  printReport(*merged, *drafts, options.isDryRun, console);
  return kExitDone;
}

}  // namespace vantrel::cli
