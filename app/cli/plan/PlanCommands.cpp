#include <CLI/App.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>

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

/// An attribute of a plan with an option of its name.
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
          "Zone of the place, as Europe/Madrid (new plans: by default the device's), or auto: see "
          "lookup"},
    Field{"latitude", "DEGREES", "-90 to 90, north positive"},
    Field{"longitude", "DEGREES", "-180 to 180, east positive"},
};

/// The texts of the options by attribute; `nullopt` to clear the attribute. Each was validated by
/// `valueOf` while the command line was parsed, except kLookUp.
using FieldTexts = std::map<std::string, std::optional<std::string>>;

/// Returns the value of `text`; wall times are in `zone`.
Expected<Value> valueOf(const std::string& key, const std::string& text, const TimeZone& zone) {
  const std::string option = "--" + key;
  if (key == "date") {
    return dateIntervalFromArgument(option, text, zone).map([](const auto& interval) {
      return Value(interval.first);
    });
  }
  if (key == "timezone") {
    return timeZoneFromArgument(option, text).map([](const auto& z) { return Value(z.name()); });
  }
  if (key == "latitude") return latitudeFromArgument(option, text);
  if (key == "longitude") return longitudeFromArgument(option, text);
  return textFromArgument(option, text);
}

bool hasZoneToLookUp(const FieldTexts& texts) {
  const auto zone = texts.find("timezone");
  return zone != texts.end() && zone->second == kLookUp;
}

/// Returns the coordinate from the command line, otherwise `stored`.
std::optional<double> coordinateOf(const FieldTexts& texts, const std::string& key,
                                   std::optional<double> stored) {
  const auto text = texts.find(key);
  if (text == texts.end()) return stored;
  return text->second ? finiteNumber(*text->second) : std::nullopt;
}

/// Returns `texts` with the time zone that a web service reports for the place, if it is kLookUp.
/// `plan` is null for a new plan.
Expected<FieldTexts> withZoneOfPlace(FieldTexts texts, const Planning* plan) {
  if (!hasZoneToLookUp(texts)) return texts;
  const auto latitude = coordinateOf(texts, "latitude", plan ? plan->latitude() : std::nullopt);
  const auto longitude = coordinateOf(texts, "longitude", plan ? plan->longitude() : std::nullopt);
  if (!latitude || !longitude) {
    return tl::unexpected(
        failure(kExitUsage, "--timezone auto", "requires --latitude and --longitude"));
  }
  return timeZoneOfPlace({*latitude, *longitude}).map([&](const TimeZone& zone) {
    texts["timezone"] = zone.name();
    return texts;
  });
}

/// Sets the attributes and saves. Wall times are in the zone of `texts`, otherwise in `zone`.
Expected<void> applyAndSave(const FieldTexts& texts, TimeZone zone, Planning& plan) {
  if (const auto name = texts.find("timezone"); name != texts.end()) {
    zone = TimeZone::timeZoneOrDefault(name->second);
  }
  for (const auto& [key, text] : texts) {
    const auto value = text ? valueOf(key, *text, zone) : Value();
    if (!value) return tl::unexpected(value.error());
    if (!plan.setValueForKey(*value, key)) {
      return tl::unexpected(failure(kExitBadData, key, "not an attribute of plans in this store"));
    }
  }
  return plan.managedObjectContext()->save();
}

int addPlan(const FieldTexts& texts, Console& console) {
  if (texts.empty()) {
    return console.fail(
        failure(kExitUsage, "plan add", "expected --name or --date; see vantrel plan add --help"));
  }
  auto complete = withZoneOfPlace(texts, nullptr);
  if (!complete) return console.fail(complete.error());
  const TimeZone here = TimeZone::defaultTimeZone();
  // A wall time means little without its zone.
  complete->try_emplace("timezone", here.name());
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const auto plan =
      std::dynamic_pointer_cast<Planning>((*context)->insertNewObject(Planning::kEntityName));
  if (!plan) return console.fail(failure(kExitInternal, "plan add", "the model has no plans"));
  if (const auto saved = applyAndSave(*complete, here, *plan); !saved) {
    return console.fail(saved.error());
  }
  console.print(console.isJson() ? jsonText(*plan) : plan->uniqueIdentifier().value_or("") + "\n");
  return kExitDone;
}

using PlanName = std::optional<std::string>;

Expected<std::shared_ptr<Planning>> storedPlan(const PlanName& name) {
  return contextForReading().and_then([&](auto* context) { return planNamed(*context, *name); });
}

struct EditOptions {
  PlanName plan;
  FieldTexts texts;
};

int editPlan(const EditOptions& options, Console& console) {
  if (options.texts.empty()) {
    return console.fail(
        failure(kExitUsage, "plan edit", "nothing to change; see vantrel plan edit --help"));
  }
  const auto plan = storedPlan(options.plan);
  if (!plan) return console.fail(plan.error());
  const auto done =
      withZoneOfPlace(options.texts, plan->get()).and_then([&](const FieldTexts& texts) {
        return applyAndSave(texts, zoneOfPlan(**plan), **plan);
      });
  return done ? kExitDone : console.fail(done.error());
}

int removePlan(const PlanName& name, Console& console) {
  const auto plan = storedPlan(name);
  if (!plan) return console.fail(plan.error());
  const std::string json = console.isJson() ? jsonText(**plan) : std::string();
  const std::string text = candidateText(**plan);
  if (const auto removed = removeFromStore(*plan); !removed) return console.fail(removed.error());
  console.print(json);
  console.note("removed " + text);
  return kExitDone;
}

/// Inserts a copy of `plan` and of its pictures; the context is not saved.
Expected<std::shared_ptr<Planning>> insertCopy(const Planning& plan) {
  const auto images = plan.images();
  if (images.size() != plan.imageCount()) {
    return tl::unexpected(
        failure(kExitBadData, "plan copy", "cannot read the pictures of this store"));
  }
  ManagedObjectContext& context = *plan.managedObjectContext();
  const auto copyOf = [&](const ManagedObject& object) {
    auto copy = context.insertNewObject(object.entity().name);
    for (const auto& attribute : object.entity().attributes) {
      // The copy has a new one.
      if (attribute.name == "uniqueIdentifier") continue;
      copy->setValueForKey(object.valueForKey(attribute.name), attribute.name);
    }
    return copy;
  };
  auto copy = std::dynamic_pointer_cast<Planning>(copyOf(plan));
  for (const auto& image : images) copyOf(*image)->setRelatedObject(copy, "planning");
  return copy;
}

int copyPlan(const EditOptions& options, Console& console) {
  const auto copy =
      storedPlan(options.plan).and_then([](const auto& plan) { return insertCopy(*plan); });
  if (!copy) return console.fail(copy.error());
  const auto saved = applyAndSave(options.texts, zoneOfPlan(**copy), **copy);
  if (!saved) return console.fail(saved.error());
  console.print(console.isJson() ? jsonText(**copy)
                                 : (*copy)->uniqueIdentifier().value_or("") + "\n");
  return kExitDone;
}

int showPlan(const PlanName& name, Console& console) {
  const auto plan = storedPlan(name);
  if (!plan) return console.fail(plan.error());
  console.print(console.isJson() ? jsonText(**plan) : planDetails(**plan, console));
  return kExitDone;
}

struct ListOptions {
  DateRange range;
  std::optional<PlanTemplate> format;
  bool isPlain = false;
};

int listPlans(const ListOptions& options, Console& console) {
  if (int{options.isPlain} + int{options.format.has_value()} + int{console.isJson()} > 1) {
    return console.fail(
        failure(kExitUsage, "plan list", "expected only one of --plain, --format and --json"));
  }
  const auto plans = PlanSource::open(options.range);
  if (!plans) return console.fail(plans.error());
  if (console.isJson()) {
    printJson(**plans, [&](std::string_view text) { console.print(text); });
  } else if (options.isPlain) {
    (*plans)->forEach([&](const Planning& plan) { console.print(plainLine(plan)); });
  } else if (options.format) {
    (*plans)->forEach([&](const Planning& plan) { console.print(options.format->line(plan)); });
  } else if (printTable(**plans, console) == 0) {
    console.note("no plans");
  }
  const auto& failure = (*plans)->failure();
  return failure ? console.fail(*failure) : kExitDone;
}

/// Adds an option for each attribute, or for `keys` only; with `clearing`, also one to clear it.
void addFields(CLI::App& parser, FieldTexts& texts, bool clearing,
               const std::set<std::string>& keys = {}) {
  for (const auto& field : kFields) {
    const std::string key = field.key;
    if (!keys.empty() && !keys.contains(key)) continue;
    const auto store = [&texts, key](const CLI::results_t& values) {
      const std::string& text = values.front();
      if (key != "timezone" || text != kLookUp) {
        const auto value = valueOf(key, text, TimeZone::defaultTimeZone());
        if (!value) throw ArgumentError{value.error()};
      }
      texts[key] = text;
      return true;
    };
    auto* option = parser.add_option("--" + key, store, field.description);
    option->type_name(field.valueName);
    if (!clearing) continue;
    const auto clear = [&texts, key] { texts[key] = std::nullopt; };
    parser.add_flag_callback("--no-" + key, clear, "Clear the " + key)->excludes(option);
  }
}

void addPlanName(CLI::App& parser, PlanName& name) {
  addTextOption(parser, "PLAN", name, "", "Identifier, at least its first four characters, or URI");
}

void addListOptions(CLI::App& parser, ListOptions& options) {
  addRangeOptions(parser, options.range);
  addValueOption(parser, "--format", options.format, &PlanTemplate::parsed, "TEMPLATE",
                 "Format of a plan's line, as \"{day} {time}\\t{name}\"; fields: " +
                     PlanTemplate::fieldNames() + "; {{ is a literal brace");
  parser.add_flag("--plain", options.isPlain,
                  "For programs, columns separated by tabs: identifier, date, local date, zone, "
                  "latitude, longitude, name");
}

}  // namespace

void fillPlanCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  const auto add =
      addCommand(parser, session, "add", "Add a plan and print its identifier", &addPlan);
  addFields(add.parser, add.options, false);
  const auto list =
      addCommand(parser, session, "list", "List plans by date, undated ones last", &listPlans);
  addListOptions(list.parser, list.options);
  const auto show = addCommand(parser, session, "show", "Show all attributes of a plan", &showPlan);
  addPlanName(show.parser, show.options);
  const auto edit = addCommand(parser, session, "edit", "Change a plan", &editPlan);
  addPlanName(edit.parser, edit.options.plan);
  addFields(edit.parser, edit.options.texts, true);
  const auto copy = addCommand(parser, session, "copy",
                               "Copy a plan with its pictures and print the identifier", &copyPlan);
  addPlanName(copy.parser, copy.options.plan);
  addFields(copy.parser, copy.options.texts, false, {"date", "name"});
  const auto remove =
      addCommand(parser, session, "remove", "Remove a plan; with --json, print it for plan import",
                 &removePlan);
  addPlanName(remove.parser, remove.options);
  fillExchangeCommands(parser, session);
}

}  // namespace vantrel::cli
