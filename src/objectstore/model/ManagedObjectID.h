#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Identifies an object: permanently once it is saved, temporarily within its context before. Cheap
/// to copy. Thread-safe.
class ManagedObjectID {
 public:
  ManagedObjectID() = default;
  static ManagedObjectID permanentID(std::string_view storeUuid, std::string_view entityName,
                                     std::int64_t primaryKey);
  /// Returns a different identifier on each call.
  static ManagedObjectID temporaryID(std::string_view entityName);

  bool isTemporaryID() const { return key_ <= 0; }
  const std::string& entityName() const;
  /// Empty for a temporary identifier.
  const std::string& storeUuid() const;
  /// The row's key; 0 for a temporary identifier.
  std::int64_t primaryKey() const { return key_ > 0 ? key_ : 0; }
  /// The permanent identifier of another row of the same entity and store.
  ManagedObjectID withPrimaryKey(std::int64_t primaryKey) const { return {names_, primaryKey}; }
  /// Increases with each new temporary identifier; 0 for a permanent one.
  std::int64_t temporaryNumber() const { return key_ < 0 ? -key_ : 0; }
  /// "x-coredata://<store UUID>/Planning/p7", or "x-coredata:///Planning/t<UUID><counter>".
  std::string URIRepresentation() const;

  friend bool operator==(const ManagedObjectID&, const ManagedObjectID&) = default;

 private:
  /// One per store and entity in a process, never freed, so that equal names have equal addresses.
  struct Names;
  static const Names* namesFor(std::string_view storeUuid, std::string_view entityName);
  ManagedObjectID(const Names* names, std::int64_t key) : names_(names), key_(key) {}

  const Names* names_ = nullptr;
  std::int64_t key_ = 0;  ///< Negative: minus the number of a temporary identifier.
};

/// The parts of a permanent URI.
struct PermanentObjectURI {
  std::string_view storeUuid;
  std::string_view entityName;
  std::int64_t primaryKey = 0;
};
/// `nullopt` if `uri` is malformed. The views refer to `uri`.
std::optional<PermanentObjectURI> parsePermanentObjectURI(std::string_view uri);

}  // namespace vantrel
