#include "objectstore/model/ManagedObjectModel.h"

#include <algorithm>
#include <system_error>

#include "objectstore/model/ModelDecoding.h"
#include "platform/archive/KeyedUnarchiver.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kVersionInfo = "VersionInfo.plist";
constexpr std::string_view kModelSuffix = ".mom";

Error unreadable(const fs::path& url, const std::string& why) {
  return {"ManagedObjectModel", 2, url.string() + ": " + why, {}};
}

ManagedObjectModel::VersionHashes hashesInDictionary(const PropertyList& dictionary) {
  ManagedObjectModel::VersionHashes hashes;
  for (const auto& [entity, value] : dictionary.entries()) {
    VersionHash hash;
    const auto bytes = value.asData();
    if (!bytes || bytes->size() != hash.size()) continue;
    std::copy(bytes->begin(), bytes->end(), hash.begin());
    hashes.emplace(entity, hash);
  }
  return hashes;
}

/// The folder's only .mom, without the suffix; empty when there are none or several.
std::string onlyVersion(const fs::path& momd) {
  std::string only;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(momd, error)) {
    const auto name = entry.path().filename();
    if (name.extension() != kModelSuffix) continue;
    if (!only.empty()) return {};
    only = name.stem();
  }
  return only;
}

}  // namespace

Expected<ManagedObjectModel> ManagedObjectModel::modelWithContentsOfURL(const fs::path& url) {
  std::error_code error;
  if (!fs::is_directory(url, error)) {
    const auto data = dataWithContentsOfURL(url);
    if (!data) return tl::unexpected(data.error());
    auto model = modelWithData(*data);
    if (!model) {
      model.error().localizedDescription.insert(0, url.string() + ": ");
      return model;
    }
    model->url_ = url;
    model->archiveUrl_ = url;
    return model;
  }
  PropertyList info;
  const auto infoUrl = url / kVersionInfo;
  if (fs::exists(infoUrl, error)) {
    auto list = PropertyList::propertyListWithContentsOfURL(infoUrl);
    if (!list) return tl::unexpected(list.error());
    info = std::move(*list);
  }
  const auto named = info["NSManagedObjectModel_CurrentVersionName"].asString();
  const auto version = named ? *named : onlyVersion(url);
  if (version.empty()) return tl::unexpected(unreadable(url, "No version is the current one."));
  if (version.find('/') != std::string::npos) {
    return tl::unexpected(unreadable(infoUrl, "\"" + version + "\" is no name of a version."));
  }
  auto model = modelWithContentsOfURL(url / (version + std::string(kModelSuffix)));
  if (!model) return model;
  model->url_ = url;
  const auto hashes = hashesInDictionary(info["NSManagedObjectModel_VersionHashes"][version]);
  for (auto& entity : model->entities_) {
    if (const auto hash = hashes.find(entity.name); hash != hashes.end()) {
      entity.versionHash = hash->second;
    }
  }
  return model;
}

Expected<ManagedObjectModel> ManagedObjectModel::modelWithData(std::span<const std::byte> data) {
  const auto unarchiver = KeyedUnarchiver::unarchiverWithData(data);
  if (!unarchiver) return tl::unexpected(unarchiver.error());
  const auto root = unarchiver->root();
  auto entities = decodedEntities(root).and_then(orderedEntities);
  if (!entities) return tl::unexpected(entities.error());
  ManagedObjectModel model;
  model.entities_ = std::move(*entities);
  for (auto& entity : model.entities_) {
    entity.index = static_cast<std::size_t>(&entity - model.entities_.data());
    // Superentities come first.
    entity.superentity = std::as_const(model).entityNamed(entity.superentityName);
    entity.root = entity.superentity ? entity.superentity->root : &entity;
    for (auto& relationship : entity.relationships) {
      relationship.destinationEntity =
          std::as_const(model).entityNamed(relationship.destinationEntityName);
    }
  }
  for (const auto& identifier : root.decodeObjectForKey("NSVersionIdentifiers").array()) {
    model.versionIdentifiers_.push_back(identifier.string().value_or(""));
  }
  if (unarchiver->error()) return tl::unexpected(*unarchiver->error());
  return model;
}

std::map<std::string, ManagedObjectModel::VersionHashes> ManagedObjectModel::allVersionHashes(
    const fs::path& momd) {
  std::map<std::string, VersionHashes> versions;
  const auto info = PropertyList::propertyListWithContentsOfURL(momd / kVersionInfo);
  if (!info) return versions;
  for (const auto& [version, hashes] : (*info)["NSManagedObjectModel_VersionHashes"].entries()) {
    versions.emplace(version, hashesInDictionary(hashes));
  }
  return versions;
}

const EntityDescription* ManagedObjectModel::entityNamed(std::string_view name) const {
  const auto found = std::find_if(entities_.begin(), entities_.end(),
                                  [&](const auto& entity) { return entity.name == name; });
  return found == entities_.end() ? nullptr : &*found;
}

EntityDescription* ManagedObjectModel::entityNamed(std::string_view name) {
  return const_cast<EntityDescription*>(std::as_const(*this).entityNamed(name));
}

ManagedObjectModel::VersionHashes ManagedObjectModel::versionHashes() const {
  VersionHashes hashes;
  for (const auto& entity : entities_) {
    if (entity.versionHash) hashes.emplace(entity.name, *entity.versionHash);
  }
  return hashes;
}

}  // namespace vantrel
