#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "base/Clock.h"
#include "cli/Command.h"
#include "cli/JsonText.h"
#include "cli/plan/PlanSelection.h"
#include "cli/store/SamplePlans.h"
#include "common/ExitCode.h"
#include "common/StoreAccess.h"
#include "common/TerminalText.h"
#include "objectstore/sqlite/SqliteStore.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreError.h"
#include "store/CustomCamera.h"
#include "store/CustomPoi.h"
#include "store/Database.h"
#include "store/Image.h"
#include "store/Planning.h"
#include "store/VantrelPrefiller.h"

namespace vantrel::cli {

namespace {

namespace fs = std::filesystem;

std::uintmax_t sizeOf(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return error ? 0 : size;
}

/// How the store's model compares with ours, once it could be opened, or why not.
std::string modelState(const StoreMetadata& store, const Expected<SqliteStore*>& opened) {
  if (!opened) {
    const bool isNewer = storeErrorCode(opened.error()) == StoreErrorCode::kNewer;
    return isNewer ? "newer" : "incompatible";
  }
  if (!(*opened)->isForeign()) return "current";
  const auto url = Database::sharedInstance().modelURL();
  for (const auto& [name, hashes] : ManagedObjectModel::allVersionHashes(url.value_or(""))) {
    if (store.versionHashes == hashes) return "older";
  }
  return "foreign";
}

std::string joined(const std::vector<std::string>& versions) {
  std::string text;
  for (const auto& version : versions) text += (text.empty() ? "" : ", ") + version;
  return text.empty() ? kUnknown : text;
}

std::string counted(const std::optional<std::size_t>& count) {
  return count ? std::to_string(*count) : kUnknown;
}

/// What a store file says of itself, and what can be counted in it.
struct StoreInfo {
  fs::path path;
  std::string uuid;
  std::vector<std::string> modelVersions;        ///< Of the store.
  std::vector<std::string> bundleModelVersions;  ///< Of the model that it is compared with.
  /// "current" fits; "older" is migrated when it is opened for writing; "foreign" was written with
  /// another model, serves and is left as it is; "newer" and "incompatible" cannot be used.
  std::string model;
  std::string journal;               ///< "wal" or "rollback".
  std::uintmax_t size = 0;           ///< Bytes of the file.
  std::uintmax_t walSize = 0;        ///< Bytes of the write-ahead log beside it.
  std::optional<std::size_t> plans;  ///< Nothing where the store cannot be counted.
  std::optional<std::size_t> customPois;
  std::optional<std::size_t> customCameras;
  std::optional<std::size_t> images;
};

/// Reads the store without migrating it.
Expected<StoreInfo> storeInfo(const fs::path& path) {
  const auto metadata = PersistentStoreCoordinator::metadataForPersistentStore(path);
  if (!metadata) return tl::unexpected(metadata.error());
  const auto model = Database::sharedInstance().managedObjectModel();
  if (!model) return tl::unexpected(failure(kExitInternal, "store", "the model is missing"));

  StoreInfo info;
  info.path = path;
  info.uuid = metadata->uuid;
  info.modelVersions = metadata->versionIdentifiers;
  info.bundleModelVersions = model->versionIdentifiers();
  info.journal = isWriteAheadLogged(path) ? "wal" : "rollback";
  info.size = sizeOf(path);
  info.walSize = sizeOf(fs::weakly_canonical(path) += "-wal");

  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  StoreOptions options = Database::mainStoreOptions();
  options.readOnly = true;
  const auto opened = coordinator->addPersistentStore(path, options);
  info.model = modelState(*metadata, opened);
  if (!opened) return info;
  ManagedObjectContext context(coordinator);
  const auto count = [&](const char* entityName) -> std::optional<std::size_t> {
    const auto found = context.countForFetchRequest({.entityName = entityName});
    return found ? std::optional(*found) : std::nullopt;
  };
  info.plans = count(Planning::kEntityName);
  info.customPois = count(CustomPoi::kEntityName);
  info.customCameras = count(CustomCamera::kEntityName);
  info.images = count(Image::kEntityName);
  return info;
}

std::string textForStoreInfo(const StoreInfo& info, const Console& console) {
  std::string text = printable(info.path.string()) + "\n";
  const auto line = [&](const char* label, const std::string& value) {
    text += console.labelled(label, printable(value));
  };
  line("Identity", info.uuid);
  line("Model", info.model + ", version " + joined(info.modelVersions) +
                    (info.model == "current" ? "" : "; here " + joined(info.bundleModelVersions)));
  line("Plans", counted(info.plans));
  line("Places", counted(info.customPois));
  line("Cameras", counted(info.customCameras));
  line("Pictures", counted(info.images));
  line("Journal", info.journal);
  line("Size", std::to_string(info.size) + " bytes, and " + std::to_string(info.walSize) +
                   " in the write-ahead log");
  return text;
}

std::string jsonForStoreInfo(const StoreInfo& info) {
  const Json json = {
      {"path", info.path.string()},
      {"uuid", info.uuid},
      {"model", info.model},
      {"modelVersions", info.modelVersions},
      {"bundleModelVersions", info.bundleModelVersions},
      {"plans", orNull(info.plans)},
      {"customPois", orNull(info.customPois)},
      {"customCameras", orNull(info.customCameras)},
      {"images", orNull(info.images)},
      {"journal", info.journal},
      {"size", info.size},
      {"walSize", info.walSize},
  };
  return jsonText(json);
}

int showStore(Console& console) {
  const auto info = existingStore().and_then(storeInfo);
  if (!info) return console.fail(info.error());
  console.print(console.isJson() ? jsonForStoreInfo(*info) : textForStoreInfo(*info, console));
  return kExitDone;
}

/// Whether the sample is in the store with a date still to come, in whatever language.
Expected<bool> isPlanned(ManagedObjectContext& context, const SamplePlan& sample, Date now) {
  FetchRequest request;
  request.predicate = Predicate::equal("latitude", sample.latitude);
  return fetchPlans(context, request).map([&](const Plans& plans) {
    return std::any_of(plans.begin(), plans.end(), [&](const auto& plan) {
      return plan->longitude() == sample.longitude && plan->date() >= now;
    });
  });
}

Expected<void> addSample(ManagedObjectContext& context, const SamplePlan& sample) {
  const auto plan =
      std::dynamic_pointer_cast<Planning>(context.insertNewObject(Planning::kEntityName));
  if (!plan) {
    return tl::unexpected(failure(kExitInternal, "store sample", "the model has no plans"));
  }
  plan->setName(sample.name);
  plan->setNotes(sample.notes);
  plan->setTimezone(sample.timezone);
  plan->setLatitude(sample.latitude);
  plan->setLongitude(sample.longitude);
  plan->setDate(sample.date);
  // Only this one: in plans of the photographer a note left out would turn into an empty one.
  VantrelPrefiller::translatePlanning(*plan);
  return {};
}

int addSamples(Console& console) {
  const auto context = contextForWriting();
  if (!context) return console.fail(context.error());
  const Date now = Clock::sharedClock().now();
  int added = 0;
  for (const auto& sample : samplePlans(now)) {
    const auto planned = isPlanned(**context, sample, now);
    if (!planned) return console.fail(planned.error());
    if (*planned) continue;
    if (const auto done = addSample(**context, sample); !done) return console.fail(done.error());
    ++added;
  }
  if (const auto saved = (*context)->save(); !saved) return console.fail(saved.error());
  console.note(std::to_string(added) + " sample plans added; see them with vantrel today");
  return kExitDone;
}

}  // namespace

void fillStoreCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  addCommand(parser, session, "info", "Tell what the store is, without changing it", &showStore);
  addCommand(parser, session, "sample", "Add eight sample plans on coming days; makes the store",
             &addSamples);
  fillStoreUpkeepCommands(parser, session);
}

}  // namespace vantrel::cli
