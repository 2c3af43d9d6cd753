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

/// A model in its compiled form. Immutable once loaded but for the functions that make objects.
class ManagedObjectModel {
 public:
  using VersionHashes = std::map<std::string, VersionHash, std::less<>>;

  /// Reads the current version of a .momd folder (VersionInfo.plist names it; when it does not, the
  /// only .mom), or a single .mom file. Damaged files give an error that names the file.
  static Expected<ManagedObjectModel> modelWithContentsOfURL(const std::filesystem::path& url);
  /// Reads a model's keyed archive from memory.
  static Expected<ManagedObjectModel> modelWithData(std::span<const std::byte> data);
  /// Hashes of every version that a .momd folder lists, by version name; empty for a .mom.
  static std::map<std::string, VersionHashes> allVersionHashes(const std::filesystem::path& momd);

  /// In the order of the stores' entity numbers: the tree depth first, siblings by name without
  /// regard to case. The number of an entity in a new store is its position here plus 1.
  const std::vector<EntityDescription>& entities() const { return entities_; }
  const EntityDescription* entityNamed(std::string_view name) const;
  EntityDescription* entityNamed(std::string_view name);
  /// "4" for the fourth version; may be empty.
  const std::vector<std::string>& versionIdentifiers() const { return versionIdentifiers_; }
  /// By entity name; empty when the model came without hashes.
  VersionHashes versionHashes() const;
  /// The folder or file that it was read from; empty when it came from memory.
  const std::filesystem::path& url() const { return url_; }

 private:
  std::vector<EntityDescription> entities_;
  std::vector<std::string> versionIdentifiers_;
  std::filesystem::path url_;
};

}  // namespace vantrel
