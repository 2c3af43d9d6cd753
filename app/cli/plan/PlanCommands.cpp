#include <CLI/App.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <memory>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/CommandGroup.h"
#include "cli/lookup/PlaceService.h"
#include "cli/plan/PlanJson.h"
#include "cli/plan/PlanSelection.h"
#include "cli/plan/PlanTemplate.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "store/Planning.h"

namespace vantrel::cli {

namespace {

/// A plan's attribute as it is given on the command line.
struct Field {
  const char* key;
  const char* valueName;
  const char* description;
};
constexpr std::array kFields = {
    Field{"name", "TEXT", "Title"},
    Field{"notes", "TEXT", "Notes"},
    Field{"date", "WHEN", "\"2026-07-15 23:40\", \"friday 05:30\", +3d, 2026-07-15T21:40:00Z"},
    Field{"timezone", "ZONE",
          "Zone of the place, as Europe/Madrid (when new: else the device's), or auto: see lookup"},
    Field{"latitude", "DEGREES", "-90 to 90, north positive"},
    Field{"longitude", "DEGREES", "-180 to 180, east positive"},
};

/// What was given, by attribute; nothing stands for "clear it".
using Given = std::map<std::string, std::optional<std::string>>;
using Changes = std::map<std::string, Value>;

Expected<Value> checkedValue(const std::string& key, const std::string& text,
                             const TimeZone& zone) {
  const std::string option = "--" + key;
  if (key == "date") {
    return momentFromArgument(option, text, zone).map([](const Moment& m) {
      return Value(m.first);
    });
  }
  if (key == "timezone") {
    return timeZoneFromArgument(option, text).map([](const auto& z) { return Value(z.name()); });
  }
  if (key == "latitude") return latitudeFromArgument(option, text);
  if (key == "longitude") return longitudeFromArgument(option, text);
  return textFromArgument(option, text);
}

/// Everything that was given, checked; wall times are those of `zone`, or of the zone given.
Expected<Changes> checkedChanges(const Given& given, TimeZone zone) {
  if (const auto name = given.find("timezone"); name != given.end()) {
    zone = TimeZone::timeZoneOrDefault(name->second);
  }
  Changes changes;
  for (const auto& [key, text] : given) {
    auto value = text ? checkedValue(key, *text, zone) : Value();
    if (!value) return tl::unexpected(value.error());
    changes[key] = *value;
  }
  return changes;
}

bool asksForZone(const Given& given) {
  const auto zone = given.find("timezone");
  return zone != given.end() && zone->second == kLookUp;
}

/// What was given without the wish to look something up: it can be checked before anybody is asked.
Given withoutAsking(Given given) {
  if (asksForZone(given)) given.erase("timezone");
  return given;
}

/// A coordinate that was given, else the plan's own.
std::optional<double> coordinateOf(const Given& given, const std::string& key,
                                   std::optional<double> stored) {
  const auto text = given.find(key);
  if (text == given.end()) return stored;
  return text->second ? finiteNumber(*text->second) : std::nullopt;
}

/// What was given, with the zone that a web service names for the place when that is asked for.
/// `plan` is the one to change; null for a new one.
Expected<Given> withZoneOfPlace(Given given, const Planning* plan) {
  if (!asksForZone(given)) return given;
  const auto latitude = coordinateOf(given, "latitude", plan ? plan->latitude() : std::nullopt);
  const auto longitude = coordinateOf(given, "longitude", plan ? plan->longitude() : std::nullopt);
  if (!latitude || !longitude) {
    return tl::unexpected(
        failure(kExitUsage, "--timezone auto", "of which place? give --latitude and --longitude"));
  }
  return timeZoneOfPlace({*latitude, *longitude}).map([&](const TimeZone& zone) {
    given["timezone"] = zone.name();
    return given;
  });
}

Expected<void> applyAndSave(const Changes& changes, Planning& plan) {
  for (const auto& [key, value] : changes) {
    if (!plan.setValueForKey(value, key)) {
      return tl::unexpected(failure(kExitBadData, key, "this store has no place for it"));
    }
  }
  return plan.managedObjectContext()->save();
}

int addPlan(const Given& given, Console& console) {
  if (given.empty()) {
    return console.fail(failure(kExitUsage, "plan add", "give at least --name or --date"));
  }
  const TimeZone here = TimeZone::defaultTimeZone();
  auto changes = checkedChanges(withoutAsking(given), here).and_then([&](const Changes&) {
    return withZoneOfPlace(given, nullptr).and_then([&](const Given& complete) {
      return checkedChanges(complete, here);
    });
  });
  if (!changes) return console.fail(changes.error());
  // A wall time means little without its zone.
  if (!given.contains("timezone")) (*changes)["timezone"] = here.name();
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const auto plan =
      std::dynamic_pointer_cast<Planning>((*context)->insertNewObject(Planning::kEntityName));
  if (!plan) return console.fail(failure(kExitInternal, "plan add", "the model has no plans"));
  if (const auto saved = applyAndSave(*changes, *plan); !saved) return console.fail(saved.error());
  console.print(console.isJson() ? jsonText(*plan) : plan->uniqueIdentifier().value_or("") + "\n");
  return kExitDone;
}

using PlanName = std::optional<std::string>;

Expected<std::shared_ptr<Planning>> storedPlan(const PlanName& name) {
  return contextForReading().and_then([&](auto* context) { return planNamed(*context, *name); });
}

struct Edit {
  PlanName plan;
  Given changes;
};

int editPlan(const Edit& edit, Console& console) {
  const Given& given = edit.changes;
  if (given.empty()) {
    return console.fail(
        failure(kExitUsage, "plan edit", "nothing to change; see vantrel plan edit --help"));
  }
  const auto checked = checkedChanges(withoutAsking(given), TimeZone::defaultTimeZone());
  if (!checked) return console.fail(checked.error());
  const auto plan = storedPlan(edit.plan);
  if (!plan) return console.fail(plan.error());
  // Wall time is the plan's own, so it is read again.
  const auto done =
      withZoneOfPlace(given, plan->get())
          .and_then(
              [&](const Given& complete) { return checkedChanges(complete, zoneOfPlan(**plan)); })
          .and_then([&](const Changes& changes) { return applyAndSave(changes, **plan); });
  return done ? kExitDone : console.fail(done.error());
}

int removePlan(const PlanName& name, Console& console) {
  const auto removed = storedPlan(name).and_then(removeFromStore);
  return removed ? kExitDone : console.fail(removed.error());
}

int showPlan(const PlanName& name, Console& console) {
  const auto plan = storedPlan(name);
  if (!plan) return console.fail(plan.error());
  console.print(console.isJson() ? jsonText(**plan) : planDetails(**plan, console));
  return kExitDone;
}

/// What `plan list` is given.
struct Listing {
  std::optional<std::string> from;
  std::optional<std::string> to;
  std::optional<PlanTemplate> format;
  bool isPlain = false;
};

int listPlans(const Listing& listing, Console& console) {
  if (int{listing.isPlain} + int{listing.format.has_value()} + int{console.isJson()} > 1) {
    return console.fail(
        failure(kExitUsage, "plan list", "only one of --plain, --format and --json"));
  }
  const auto plans = plansBetween(listing.from, listing.to);
  if (!plans) return console.fail(plans.error());
  if (plans->empty()) console.note("no plans");
  if (console.isJson()) {
    printJson(*plans, [&](std::string_view text) { console.print(text); });
  } else if (listing.isPlain) {
    for (const auto& plan : *plans) console.print(plainLine(*plan));
  } else if (listing.format) {
    for (const auto& plan : *plans) console.print(listing.format->line(*plan));
  } else {
    printTable(*plans, console);
  }
  return kExitDone;
}

/// One option for each attribute; with `clearing`, also one to clear it.
void addFields(CLI::App& parser, Given& given, bool clearing) {
  for (const auto& field : kFields) {
    const std::string key = field.key;
    const auto keep = [&given, key](const CLI::results_t& values) {
      given[key] = values.front();
      return true;
    };
    auto* option = parser.add_option("--" + key, keep, field.description);
    option->type_name(field.valueName);
    if (!clearing) continue;
    const auto clear = [&given, key] { given[key] = std::nullopt; };
    parser.add_flag_callback("--no-" + key, clear, "Clear the " + key)->excludes(option);
  }
}

void addPlanName(CLI::App& parser, PlanName& name) {
  addTextOption(parser, "PLAN", name, "",
                "Identifier, the first four or more of its characters, or URI");
}

void addListOptions(CLI::App& parser, Listing& listing) {
  const std::string when = "now, today, friday, +2w, 2026-07-15, \"2026-07-15 23:40\"";
  addTextOption(parser, "--from", listing.from, "WHEN", "No earlier than this: " + when);
  addTextOption(parser, "--to", listing.to, "WHEN", "No later than this; a day counts to its end");
  addValueOption(parser, "--format", listing.format, &PlanTemplate::parsed, "TEMPLATE",
                 "A line for each plan, as \"{day} {time}\\t{name}\"; in braces may stand " +
                     PlanTemplate::fieldNames() + "; {{ is a brace");
  parser.add_flag("--plain", listing.isPlain,
                  "Lines for programs, columns divided by tabs: identifier, date, the same in the "
                  "plan's zone, zone, latitude, longitude, name");
}

}  // namespace

void fillPlanCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto add =
      addCommand(parser, session, "add", "Add a plan and print its identifier", &addPlan);
  addFields(add.parser, add.given, false);
  const auto list =
      addCommand(parser, session, "list", "List plans by date, undated ones last", &listPlans);
  addListOptions(list.parser, list.given);
  const auto show =
      addCommand(parser, session, "show", "Show all that is known of a plan", &showPlan);
  addPlanName(show.parser, show.given);
  const auto edit = addCommand(parser, session, "edit", "Change a plan", &editPlan);
  addPlanName(edit.parser, edit.given.plan);
  addFields(edit.parser, edit.given.changes, true);
  const auto remove = addCommand(parser, session, "remove", "Remove a plan", &removePlan);
  addPlanName(remove.parser, remove.given);
  fillExchangeCommands(parser, session);
}

}  // namespace vantrel::cli
