#pragma once

#include <cstdint>
#include <string>

namespace vantrel {

/// Names one object: for good once it is saved, within the context before.
class ManagedObjectID {
 public:
  ManagedObjectID() = default;
  static ManagedObjectID permanentID(std::string storeUuid, std::string entityName,
                                     std::int64_t primaryKey);
  static ManagedObjectID temporaryID(std::string entityName);

  bool isTemporaryID() const { return primaryKey_ == 0; }
  const std::string& entityName() const { return entityName_; }
  const std::string& storeUuid() const { return storeUuid_; }
  /// The row's key; 0 while temporary.
  std::int64_t primaryKey() const { return primaryKey_; }
  /// "x-coredata://<store UUID>/Planning/p7", or "x-coredata:///Planning/t<UUID><counter>".
  std::string URIRepresentation() const;

  friend bool operator==(const ManagedObjectID&, const ManagedObjectID&) = default;

 private:
  std::string storeUuid_;
  std::string entityName_;
  std::int64_t primaryKey_ = 0;
  std::string temporaryName_;
};

}  // namespace vantrel
