#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Names one object: for good once it is saved, within the context before. Small and cheap to copy.
/// Any thread.
class ManagedObjectID {
 public:
  ManagedObjectID() = default;
  static ManagedObjectID permanentID(std::string_view storeUuid, std::string_view entityName,
                                     std::int64_t primaryKey);
  /// A new one each time.
  static ManagedObjectID temporaryID(std::string_view entityName);

  bool isTemporaryID() const { return key_ <= 0; }
  const std::string& entityName() const;
  /// Empty while temporary.
  const std::string& storeUuid() const;
  /// The row's key; 0 while temporary.
  std::int64_t primaryKey() const { return key_ > 0 ? key_ : 0; }
  /// The permanent identifier of another row of the same entity and store.
  ManagedObjectID withPrimaryKey(std::int64_t primaryKey) const { return {names_, primaryKey}; }
  /// Grows with each temporary identifier that is made; 0 once permanent.
  std::int64_t temporaryNumber() const { return key_ < 0 ? -key_ : 0; }
  /// "x-coredata://<store UUID>/Planning/p7", or "x-coredata:///Planning/t<UUID><counter>".
  std::string URIRepresentation() const;

  friend bool operator==(const ManagedObjectID&, const ManagedObjectID&) = default;

 private:
  /// Kept once per process for each store and entity, so that equal names have equal addresses.
  struct Names;
  static const Names* namesFor(std::string_view storeUuid, std::string_view entityName);
  ManagedObjectID(const Names* names, std::int64_t key) : names_(names), key_(key) {}

  const Names* names_ = nullptr;
  std::int64_t key_ = 0;  ///< Below 0: minus the number of a temporary one.
};

/// What the URI of a saved object says.
struct PermanentObjectURI {
  std::string_view storeUuid;
  std::string_view entityName;
  std::int64_t primaryKey = 0;
};
/// Nothing for a text of another form; the views point into it.
std::optional<PermanentObjectURI> parsePermanentObjectURI(std::string_view uri);

}  // namespace vantrel
