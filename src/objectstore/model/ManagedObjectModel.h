#pragma once

#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/EntityDescription.h"

namespace vantrel {

/// The entities of a compiled model. Immutable once loaded, except for `makeObject` and the hashes
/// of its entities. Thread-safe once loaded.
class ManagedObjectModel {
 public:
  /// By entity name.
  using VersionHashes = std::map<std::string, VersionHash, std::less<>>;

  /// A model without entities.
  ManagedObjectModel() = default;
  ManagedObjectModel(ManagedObjectModel&&) = default;
  ManagedObjectModel& operator=(ManagedObjectModel&&) = default;
  // Entities refer to each other.
  ManagedObjectModel(const ManagedObjectModel&) = delete;
  ManagedObjectModel& operator=(const ManagedObjectModel&) = delete;

  /// Reads a .mom file or the current version of a .momd folder: the version that VersionInfo.plist
  /// names or, if it names none, the only .mom. The error of a damaged file includes its path.
  static Expected<ManagedObjectModel> modelWithContentsOfURL(const std::filesystem::path& url);
  /// Decodes a model's keyed archive.
  static Expected<ManagedObjectModel> modelWithData(std::span<const std::byte> data);
  /// The hashes of every version that a .momd folder lists, by version name; empty for a .mom.
  static std::map<std::string, VersionHashes> allVersionHashes(const std::filesystem::path& momd);

  /// Depth first, siblings by name, ignoring case. In a new store, an entity's number (Z_ENT) is
  /// its index here plus 1.
  const std::vector<EntityDescription>& entities() const { return entities_; }
  /// Null if the model has no such entity.
  const EntityDescription* entityNamed(std::string_view name) const;
  EntityDescription* entityNamed(std::string_view name);
  /// "4" for the fourth version; may be empty.
  const std::vector<std::string>& versionIdentifiers() const { return versionIdentifiers_; }
  /// Empty if the model was read from a .mom.
  VersionHashes versionHashes() const;
  /// The folder or file that the model was read from; empty for `modelWithData`.
  const std::filesystem::path& url() const { return url_; }
  /// The .mom file: `url` itself or the current version in it.
  const std::filesystem::path& archiveUrl() const { return archiveUrl_; }

 private:
  std::vector<EntityDescription> entities_;
  std::vector<std::string> versionIdentifiers_;
  std::filesystem::path url_;
  std::filesystem::path archiveUrl_;
};

}  // namespace vantrel
