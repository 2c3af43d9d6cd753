#include <nlohmann/json.hpp>

#include "cli/Command.h"
#include "cli/JsonText.h"
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

namespace vantrel::cli {

namespace {

namespace fs = std::filesystem;

std::uintmax_t sizeOf(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return error ? 0 : size;
}

/// Compares the model of the store with the models in the bundle.
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

/// Returns what the store file says about itself and how many records it has, with the keys of
/// `store info --json`. Opens the store read-only.
///
/// "model" is "current", "older" (migrated when a program opens the store to write), "foreign"
/// (written with another model; usable, never migrated), "newer" or "incompatible" (both unusable).
Expected<Json> storeInfo(const fs::path& path) {
  const auto metadata = PersistentStoreCoordinator::metadataForPersistentStore(path);
  if (!metadata) return tl::unexpected(metadata.error());
  const auto model = Database::sharedInstance().managedObjectModel();
  if (!model) return tl::unexpected(failure(kExitInternal, "store", "the model is missing"));
  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  StoreOptions options = Database::mainStoreOptions();
  options.readOnly = true;
  const auto opened = coordinator->addPersistentStore(path, options);
  ManagedObjectContext context(coordinator);
  const auto count = [&](const char* entityName) -> Json {
    if (!opened) return nullptr;
    const auto found = context.countForFetchRequest({.entityName = entityName});
    return found ? Json(*found) : Json(nullptr);
  };
  return Json{
      {"path", path.string()},
      {"uuid", metadata->uuid},
      {"model", modelState(*metadata, opened)},
      {"modelVersions", metadata->versionIdentifiers},
      {"bundleModelVersions", model->versionIdentifiers()},
      {"plans", count(Planning::kEntityName)},
      {"customPois", count(CustomPoi::kEntityName)},
      {"customCameras", count(CustomCamera::kEntityName)},
      {"images", count(Image::kEntityName)},
      {"journal", isWriteAheadLogged(path) ? "wal" : "rollback"},
      {"size", sizeOf(path)},
      {"walSize", sizeOf(fs::weakly_canonical(path) += "-wal")},
  };
}

std::string textOfStoreInfo(const Json& info, const Console& console) {
  std::string text = console.bold(printable(info["path"].get<std::string>())) + "\n";
  const auto versions = [&](const char* key) {
    std::string list;
    for (const auto& version : info[key])
      list += (list.empty() ? "" : ", ") + version.get<std::string>();
    return shown(list);
  };
  const auto line = [&](const char* label, const std::string& value) {
    text += console.labelled(label, value);
  };
  const auto count = [&](const char* label, const char* key) {
    line(label, info[key].is_null() ? kUnknown : info[key].dump());
  };
  const auto model = info["model"].get<std::string>();
  line("Identity", printable(info["uuid"].get<std::string>()));
  line("Model", model + ", version " + versions("modelVersions") +
                    (model == "current" ? "" : "; here " + versions("bundleModelVersions")));
  count("Plans", "plans");
  count("Places", "customPois");
  count("Cameras", "customCameras");
  count("Pictures", "images");
  line("Journal", info["journal"].get<std::string>());
  line("Size",
       info["size"].dump() + " bytes, and " + info["walSize"].dump() + " in the write-ahead log");
  return text;
}

int showStore(Console& console) {
  const auto info = existingStore().and_then(storeInfo);
  if (!info) return console.fail(info.error());
  console.print(console.isJson() ? jsonText(*info) : textOfStoreInfo(*info, console));
  return kExitDone;
}

}  // namespace

void fillStoreCommands(CLI::App& parser, Session& session) {
  parser.require_subcommand(1);
  addCommand(parser, session, "info", "Describe the store, without changing it", &showStore);
  addCommand(parser, session, "sample",
             "Add eight sample plans on the next days; creates the store", &addSamplePlans);
  fillStoreUpkeepCommands(parser, session);
}

}  // namespace vantrel::cli
