#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "platform/system/SerialMainQueue.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Database.h"
#include "store/DuplicateRule.h"
#include "store/Planning.h"

namespace vantrel::cli {

namespace {

/// A number of records before and after a command.
struct Change {
  std::size_t before = 0;
  std::size_t after = 0;

  std::string text() const {
    return std::to_string(before) + " before, " + std::to_string(after) + " after";
  }
  Json json() const { return {{"before", before}, {"after", after}}; }
};

struct Copy {
  std::optional<std::string> from;
  std::optional<std::string> to;
};

int copyStore(const Copy& copy, Console& console) {
  const auto copied = Database::sharedInstance().copyDatabase(*copy.from, *copy.to);
  return copied ? kExitDone : console.fail(copied.error());
}

/// Counts the records of all entities that have no unique identifier.
Expected<std::size_t> countWithoutIdentifier(ManagedObjectContext& context) {
  std::size_t sum = 0;
  for (const auto& entity :
       context.persistentStoreCoordinator()->managedObjectModel()->entities()) {
    // A count includes the records of subentities.
    if (!entity.superentityName.empty()) continue;
    const auto count = context.countForFetchRequest(
        {.entityName = entity.name, .predicate = Predicate::isNil("uniqueIdentifier")});
    if (!count) return tl::unexpected(count.error());
    sum += *count;
  }
  return sum;
}

int addIdentifiers(Console& console) {
  const auto context = contextForReading();
  if (!context) return console.fail(context.error());
  const auto before = countWithoutIdentifier(**context);
  if (!before) return console.fail(before.error());
  Database::sharedInstance().performUpdatesFrom3To4();
  const auto after = countWithoutIdentifier(**context);
  if (!after) return console.fail(after.error());
  const Change change{*before, *after};
  console.print(console.isJson() ? jsonText({{"withoutIdentifier", change.json()}})
                                 : console.labelled("Without identifier", change.text(), 19));
  if (change.after == 0) return kExitDone;
  return console.fail(failure(kExitInputOutput, "store identifiers",
                              std::to_string(change.after) + " records still have none"));
}

struct Kind {
  const char* entityName;
  const char* label;
  const char* jsonKey;
};
constexpr std::array kKinds = {Kind{Planning::kEntityName, "Plans", "plans"},
                               Kind{CustomPoi::kEntityName, "Places", "customPois"},
                               Kind{CustomCamera::kEntityName, "Cameras", "customCameras"}};
using Counts = std::array<std::size_t, kKinds.size()>;

Expected<Counts> countKinds(ManagedObjectContext& context) {
  Counts counts{};
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    const auto count = context.countForFetchRequest({.entityName = kKinds[i].entityName});
    if (!count) return tl::unexpected(count.error());
    counts[i] = *count;
  }
  return counts;
}

/// Whether two records of one entity have the same values; absent values are equal.
bool hasSameValues(const ManagedObject& a, const ManagedObject& b) {
  const auto& attributes = a.entity().attributes;
  return std::all_of(attributes.begin(), attributes.end(), [&](const auto& attribute) {
    return a.valueForKey(attribute.name) == b.valueForKey(attribute.name);
  });
}

/// Adds to `copies` the records without a value for `key` that have the same values as an earlier
/// one, including the identifier. Records with pictures are kept: removing them removes the
/// pictures.
Expected<void> addCopies(ManagedObjectContext& context, const char* entityName,
                         std::string_view key, Database::Objects& copies) {
  const auto objects = context.executeFetchRequest(
      {.entityName = entityName, .predicate = Predicate::isNil(std::string(key))});
  if (!objects) return tl::unexpected(objects.error());
  std::map<std::string, Database::Objects> kept;
  for (const auto& object : *objects) {
    const Value identifier = object->valueForKey("uniqueIdentifier");
    const auto* text = std::get_if<std::string>(&identifier);
    if (!text) continue;
    auto& earlier = kept[*text];
    const bool isCopy =
        std::any_of(earlier.begin(), earlier.end(),
                    [&](const auto& other) { return hasSameValues(*other, *object); }) &&
        object->countOfRelatedObjects(kImagesKey) == 0;
    (isCopy ? copies : earlier).push_back(object);
  }
  return {};
}

/// Returns the exact copies that `Database::duplicateObjects` omits: plans without a date or name
/// are never equal there.
Expected<Database::Objects> copiesLeft(ManagedObjectContext& context) {
  Database::Objects copies;
  for (const char* key : {"date", "name"}) {
    if (const auto added = addCopies(context, Planning::kEntityName, key, copies); !added) {
      return tl::unexpected(added.error());
    }
  }
  // A plan that lacks both was found twice.
  std::sort(copies.begin(), copies.end());
  copies.erase(std::unique(copies.begin(), copies.end()), copies.end());
  return copies;
}

Expected<void> removeCopiesLeft(ManagedObjectContext& context) {
  auto copies = copiesLeft(context);
  if (!copies) return tl::unexpected(copies.error());
  if (copies->empty()) return {};
  if (auto locked = context.lockStore(); !locked) return locked;
  copies = copiesLeft(context);
  if (!copies) return tl::unexpected(copies.error());
  for (const auto& copy : *copies) context.deleteObject(copy);
  return context.save();
}

Expected<void> removeDuplicates() {
  const auto queue = std::make_shared<SerialMainQueue>();
  MainQueue::install(queue);
  Expected<void> result;
  Database::sharedInstance().removeDuplicatesWithCompletion([&](const auto& error) {
    if (error) result = tl::unexpected(*error);
  });
  queue->runUntilEmpty();
  return result;
}

/// Subtracts from `counts` what `dedupe` would remove.
Expected<Counts> countsAfterDedupe(ManagedObjectContext& context, Counts counts) {
  auto duplicates = Database::sharedInstance().duplicateObjects();
  if (!duplicates) return tl::unexpected(duplicates.error());
  return copiesLeft(context).map([&](const auto& copies) {
    duplicates->insert(duplicates->end(), copies.begin(), copies.end());
    for (std::size_t i = 0; i < kKinds.size(); ++i) {
      counts[i] -= static_cast<std::size_t>(std::count_if(
          duplicates->begin(), duplicates->end(),
          [&](const auto& object) { return object->entity().name == kKinds[i].entityName; }));
    }
    return counts;
  });
}

int dedupe(const bool& isDryRun, Console& console) {
  const auto context = contextForReading();
  if (!context) return console.fail(context.error());
  const auto before = countKinds(**context);
  if (!before) return console.fail(before.error());
  const auto after =
      isDryRun
          ? countsAfterDedupe(**context, *before)
          : removeDuplicates().and_then([&] { return removeCopiesLeft(**context); }).and_then([&] {
              return countKinds(**context);
            });
  if (!after) return console.fail(after.error());
  Json json = {{"dryRun", isDryRun}};
  std::string text;
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    const Change change{(*before)[i], (*after)[i]};
    json[kKinds[i].jsonKey] = change.json();
    text += console.labelled(kKinds[i].label, change.text());
  }
  console.print(console.isJson() ? jsonText(json) : text);
  return kExitDone;
}

}  // namespace

void fillStoreUpkeepCommands(CLI::App& parser, Session& session) {
  const auto [copy, files] = addCommand(
      parser, session, "copy",
      "Copy a store with its pictures, in the current version; OLD is only read", &copyStore);
  addValueOption(copy, "OLD", files.from, &pathFromArgument, "", "The store's .sqlite file");
  addValueOption(copy, "NEW", files.to, &pathFromArgument, "", "A file that does not exist yet");
  copy.footer(
      "Pictures are stored in a folder named after the store without its extension: two stores in\n"
      "one folder must differ in more than the extension. Exits with 75 if another program keeps\n"
      "changing OLD; try again later.");
  addCommand(parser, session, "identifiers",
             "Add the missing unique identifiers; exits with 74 if any is still missing",
             &addIdentifiers);
  const auto [remove, isDryRun] =
      addCommand(parser, session, "dedupe",
                 "Remove duplicate plans, places and cameras; keeps the first of each", &dedupe);
  remove.footer(
      "Duplicate plans have the same place, instant, name and number of pictures. A plan without "
      "a\n"
      "date or name is a duplicate if all its values, including the identifier, are those of "
      "another\n"
      "plan and it has no pictures.");
  remove.add_flag("--dry-run", isDryRun, "Only count what would be removed");
}

}  // namespace vantrel::cli
