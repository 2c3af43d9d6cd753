#include <CLI/App.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <memory>

#include "cli/Arguments.h"
#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/PlaceService.h"
#include "cli/PlanJson.h"
#include "cli/PlanLookup.h"
#include "cli/PlanSelection.h"
#include "cli/PlanTemplate.h"
#include "cli/PlanText.h"
#include "cli/StoreAccess.h"
#include "cli/ValueOption.h"

namespace vantrel::cli {

namespace {

constexpr const char* kPlanEntity = "Planning";

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

template <typename T>
Value asValue(const T& value) {
  return value;
}

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
  if (key == "latitude") return latitudeFromArgument(option, text).map(asValue<double>);
  if (key == "longitude") return longitudeFromArgument(option, text).map(asValue<double>);
  return textFromArgument(option, text).map(asValue<std::string>);
}

/// Everything that was given, checked; wall times are those of `zone`, or of the zone given.
Expected<Changes> checkedChanges(const Given& given, TimeZone zone) {
  if (const auto name = given.find("timezone"); name != given.end()) {
    zone =
        TimeZone::timeZoneWithName(name->second.value_or("")).value_or(TimeZone::defaultTimeZone());
  }
  Changes changes;
  for (const auto& [key, text] : given) {
    auto value = text ? checkedValue(key, *text, zone) : Value();
    if (!value) return tl::make_unexpected(value.error());
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
    return tl::make_unexpected(
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
      return tl::make_unexpected(failure(kExitBadData, key, "this store has no place for it"));
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
  // A wall time means little without its zone; a device's zone without a name cannot be kept.
  if (!given.contains("timezone") && TimeZone::timeZoneWithName(here.name())) {
    (*changes)["timezone"] = here.name();
  }
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const auto plan = std::dynamic_pointer_cast<Planning>((*context)->insertNewObject(kPlanEntity));
  if (!plan) return console.fail(failure(kExitInternal, "plan add", "the model has no plans"));
  if (const auto saved = applyAndSave(*changes, *plan); !saved) return console.fail(saved.error());
  console.print(console.isJson() ? jsonText(*plan) : plan->uniqueIdentifier().value_or("") + "\n");
  return kExitDone;
}

/// Opens the store and finds the plan, then does `action` with it.
template <typename Action>
int withPlan(Expected<ManagedObjectContext*> context, const std::string& name, Console& console,
             Action action) {
  if (!context) return console.fail(context.error());
  const auto plan = planNamed(**context, name);
  if (!plan) return console.fail(plan.error());
  const Expected<void> done = action(*plan);
  return done ? kExitDone : console.fail(done.error());
}

int editPlan(const std::string& name, const Given& given, Console& console) {
  if (given.empty()) {
    return console.fail(failure(kExitUsage, "plan edit",
                                "nothing to change; see vantrel plan edit "
                                "--help"));
  }
  const auto checked = checkedChanges(withoutAsking(given), TimeZone::defaultTimeZone());
  if (!checked) return console.fail(checked.error());
  return withPlan(contextForReading(), name, console, [&](const auto& plan) {
    // Wall time is the plan's own, so it is read again.
    const auto complete = withZoneOfPlace(given, plan.get());
    if (!complete) return Expected<void>(tl::make_unexpected(complete.error()));
    return checkedChanges(*complete, zoneOfPlan(*plan)).and_then([&](const Changes& changes) {
      return applyAndSave(changes, *plan);
    });
  });
}

int removePlan(const std::string& name, Console& console) {
  return withPlan(contextForReading(), name, console, [](const auto& plan) {
    auto& context = *plan->managedObjectContext();
    context.deleteObject(plan);
    return context.save();
  });
}

int showPlan(const std::string& name, Console& console) {
  return withPlan(contextForReading(), name, console, [&](const auto& plan) -> Expected<void> {
    console.print(console.isJson() ? jsonText(*plan) : planDetails(*plan, console));
    return {};
  });
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
std::shared_ptr<Given> addFields(CLI::App& parser, bool clearing) {
  auto given = std::make_shared<Given>();
  for (const auto& field : kFields) {
    const std::string key = field.key;
    const auto keep = [given, key](const CLI::results_t& values) {
      (*given)[key] = values.front();
      return true;
    };
    auto* option = parser.add_option("--" + key, keep, field.description);
    option->type_name(field.valueName);
    if (!clearing) continue;
    const auto clear = [given, key] { (*given)[key] = std::nullopt; };
    parser.add_flag_callback("--no-" + key, clear, "Clear the " + key)->excludes(option);
  }
  return given;
}

std::shared_ptr<std::string> addPlanName(CLI::App& parser) {
  auto name = std::make_shared<std::string>();
  const auto keep = [name](const CLI::results_t& values) {
    *name = typedText(values.front());
    return true;
  };
  parser.add_option("PLAN", keep, "Identifier, the first four or more of its characters, or URI")
      ->required()
      ->type_name("");
  return name;
}

void fillList(CLI::App& parser, Session& session) {
  const auto listing = std::make_shared<Listing>();
  const std::string when = "now, today, friday, +2w, 2026-07-15, \"2026-07-15 23:40\"";
  addTextOption(parser, "--from", listing->from, "WHEN", "No earlier than this: " + when);
  addTextOption(parser, "--to", listing->to, "WHEN", "No later than this; a day counts to its end");
  addValueOption(parser, "--format", listing->format, &PlanTemplate::parsed, "TEMPLATE",
                 "A line for each plan, as \"{day} {time}\\t{name}\"; in braces may stand " +
                     PlanTemplate::fieldNames() + "; {{ is a brace");
  parser.add_flag("--plain", listing->isPlain,
                  "Lines for programs, columns divided by tabs: identifier, date, the same in the "
                  "plan's zone, zone, latitude, longitude, name");
  parser.callback([=, &session] { session.exitCode = listPlans(*listing, session.console); });
}

}  // namespace

void fillPlanCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  Console& console = session.console;
  CLI::App& add = *parser.add_subcommand("add", "Add a plan and print its identifier");
  const auto added = addFields(add, false);
  add.callback([=, &session, &console] { session.exitCode = addPlan(*added, console); });

  fillList(*parser.add_subcommand("list", "List plans by date, undated ones last"), session);

  CLI::App& show = *parser.add_subcommand("show", "Show all that is known of a plan");
  const auto shown = addPlanName(show);
  show.callback([=, &session, &console] { session.exitCode = showPlan(*shown, console); });

  CLI::App& edit = *parser.add_subcommand("edit", "Change a plan");
  const auto edited = addPlanName(edit);
  const auto changed = addFields(edit, true);
  edit.callback(
      [=, &session, &console] { session.exitCode = editPlan(*edited, *changed, console); });

  CLI::App& remove = *parser.add_subcommand("remove", "Remove a plan");
  const auto removed = addPlanName(remove);
  remove.callback([=, &session, &console] { session.exitCode = removePlan(*removed, console); });

  fillExchangeCommands(parser, session);
}

}  // namespace vantrel::cli
