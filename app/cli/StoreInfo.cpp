#include "cli/StoreInfo.h"

#include <array>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/ExitCode.h"
#include "cli/JsonText.h"
#include "cli/TerminalText.h"
#include "objectstore/ManagedObjectContext.h"
#include "objectstore/SqliteStore.h"
#include "objectstore/StoreError.h"
#include "store/Database.h"

namespace vantrel::cli {

namespace {

namespace fs = std::filesystem;

std::uintmax_t sizeOf(const fs::path& path) {
  std::error_code error;
  const auto size = fs::file_size(path, error);
  return error ? 0 : size;
}

/// The database header says how the file is to be written, whether or not a log lies beside it.
std::string journalOf(const fs::path& path) {
  constexpr std::size_t kWriteVersion = 18;
  constexpr char kWal = 2;
  std::array<char, kWriteVersion + 1> header{};
  std::ifstream(path, std::ios::binary).read(header.data(), header.size());
  return header[kWriteVersion] == kWal ? "wal" : "rollback";
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
  return text.empty() ? "--" : text;
}

std::string counted(const std::optional<std::size_t>& count) {
  return count ? std::to_string(*count) : "--";
}

}  // namespace

Expected<StoreInfo> storeInfo(const fs::path& path) {
  const auto metadata = PersistentStoreCoordinator::metadataForPersistentStore(path);
  if (!metadata) return tl::make_unexpected(metadata.error());
  const auto model = Database::sharedInstance().managedObjectModel();
  if (!model) return tl::make_unexpected(failure(kExitInternal, "store", "the model is missing"));

  StoreInfo info;
  info.path = path;
  info.uuid = metadata->uuid;
  info.modelVersions = metadata->versionIdentifiers;
  info.bundleModelVersions = model->versionIdentifiers();
  info.journal = journalOf(path);
  info.size = sizeOf(path);
  info.walSize = sizeOf(path.string() + "-wal");

  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  StoreOptions options;
  options.readOnly = true;
  options.requiredAttributes = {{"Planning", {"name", "date", "timezone"}}};
  const auto opened = coordinator->addPersistentStore(path, options);
  info.model = modelState(*metadata, opened);
  if (!opened) return info;
  ManagedObjectContext context(coordinator);
  const auto count = [&](const char* entityName) -> std::optional<std::size_t> {
    FetchRequest request;
    request.entityName = entityName;
    const auto found = context.countForFetchRequest(request);
    return found ? std::optional(*found) : std::nullopt;
  };
  info.plans = count("Planning");
  info.customPois = count("CustomPoi");
  info.customCameras = count("CustomCamera");
  info.images = count("Image");
  return info;
}

std::string textForStoreInfo(const StoreInfo& info) {
  std::string text = printable(info.path.string()) + "\n";
  const auto line = [&](const char* label, const std::string& value) {
    constexpr std::size_t kLabelWidth = 11;
    text += "  " + paddedToCells(label, kLabelWidth) + printable(value) + "\n";
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

}  // namespace vantrel::cli
