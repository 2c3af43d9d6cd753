#include "objectstore/sqlite/StoreMetadata.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "base/Uuid.h"
#include "objectstore/sqlite/StoreConnection.h"
#include "objectstore/sqlite/StoreError.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

namespace {

constexpr const char* kHashes = "NSStoreModelVersionHashes";
constexpr const char* kHashesVersion = "NSStoreModelVersionHashesVersion";
constexpr const char* kHashesDigest = "NSStoreModelVersionHashesDigest";
constexpr const char* kChecksum = "NSStoreModelVersionChecksumKey";
constexpr const char* kIdentifiers = "NSStoreModelVersionIdentifiers";
constexpr const char* kStoreType = "NSStoreType";
constexpr const char* kFrameworkVersion = "NSPersistenceFrameworkVersion";
constexpr const char* kAutoVacuum = "_NSAutoVacuumLevel";
/// The version of the phone's object store whose layout we write.
constexpr std::int64_t kWrittenFrameworkVersion = 1344;
constexpr std::int64_t kWrittenHashesVersion = 3;

std::string base64(std::span<const std::uint8_t> bytes) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(bytes.size()), '\0');
  base64_encode_raw(text.data(), bytes.size(), bytes.data());
  return text;
}

const std::uint8_t* asOctets(const void* bytes) {
  return static_cast<const std::uint8_t*>(bytes);
}

/// SHA-512 of each entity's name and hash, sorted by name.
std::string hashesDigest(const ManagedObjectModel::VersionHashes& hashes) {
  sha512_ctx context;
  sha512_init(&context);
  for (const auto& [name, hash] : hashes) {
    sha512_update(&context, name.size(), asOctets(name.data()));
    sha512_update(&context, hash.size(), asOctets(hash.data()));
  }
  std::array<std::uint8_t, SHA512_DIGEST_SIZE> digest{};
  sha512_digest(&context, digest.size(), digest.data());
  return base64(digest);
}

/// SHA-256 of the hashes, in the same order.
std::string hashesChecksum(const ManagedObjectModel::VersionHashes& hashes) {
  sha256_ctx context;
  sha256_init(&context);
  for (const auto& [name, hash] : hashes) {
    sha256_update(&context, hash.size(), asOctets(hash.data()));
  }
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), digest.data());
  return base64(digest);
}

/// Sets the keys that depend on the model.
void describeModel(PropertyList& list, const ManagedObjectModel& model) {
  const auto hashes = model.versionHashes();
  PropertyList byName = PropertyList::dictionary();
  for (const auto& [name, hash] : hashes) byName.set(name, PropertyList::data(hash));
  PropertyList identifiers = PropertyList::array();
  for (const auto& identifier : model.versionIdentifiers()) {
    identifiers.append(PropertyList::string(identifier));
  }
  list.set(kHashes, byName);
  list.set(kHashesVersion, PropertyList::integer(kWrittenHashesVersion));
  list.set(kHashesDigest, PropertyList::string(hashesDigest(hashes)));
  list.set(kChecksum, PropertyList::string(hashesChecksum(hashes)));
  list.set(kIdentifiers, identifiers);
}

/// Null if the column is absent or damaged.
PropertyList readList(const Statement& row, int column) {
  return PropertyList::propertyListWithData(row.bytes(column)).value_or(PropertyList());
}

constexpr const char* kSelect = "SELECT Z_VERSION, Z_UUID, Z_PLIST FROM Z_METADATA LIMIT 1";

}  // namespace

StoreMetadata readStoreMetadata(StoreConnection& connection) {
  if (!connection.tableExists("Z_METADATA") || !connection.tableExists("Z_PRIMARYKEY")) {
    failStore(StoreErrorCode::kNotAStore, "the file is a database, but not a store");
  }
  auto query = connection.statement(kSelect);
  if (!query.next()) failStore(StoreErrorCode::kDamaged, "the store has no identity");
  StoreMetadata metadata;
  metadata.version = static_cast<int>(query.integer(0));
  metadata.uuid = query.text(1);
  const PropertyList list = readList(query, 2);
  if (metadata.uuid.empty()) failStore(StoreErrorCode::kDamaged, "the store has no identity");
  for (const auto& [name, value] : list[kHashes].entries()) {
    const auto data = value.asData();
    VersionHash hash{};
    if (!data || data->size() != hash.size()) {
      // A hash of another size fits no model.
      metadata.versionHashes.clear();
      break;
    }
    std::copy(data->begin(), data->end(), hash.begin());
    metadata.versionHashes.emplace(name, hash);
  }
  for (const auto& item : list[kIdentifiers].items()) {
    if (auto identifier = item.asString()) {
      metadata.versionIdentifiers.push_back(std::move(*identifier));
    }
  }
  return metadata;
}

void insertStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model) {
  PropertyList list = PropertyList::dictionary();
  list.set(kStoreType, PropertyList::string("SQLite"));
  list.set(kFrameworkVersion, PropertyList::integer(kWrittenFrameworkVersion));
  list.set(kAutoVacuum, PropertyList::string("2"));
  describeModel(list, model);
  const Data bytes = list.binaryData();
  const std::string uuid = uuidString();
  connection.statement("INSERT INTO Z_METADATA (Z_VERSION, Z_UUID, Z_PLIST) VALUES (1, ?, ?)")
      .bind(uuid)
      .bind(bytes)
      .execute();
}

void updateStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model) {
  auto query = connection.statement(kSelect);
  PropertyList list = query.next() ? readList(query, 2) : PropertyList();
  if (!list) list = PropertyList::dictionary();
  describeModel(list, model);
  const Data bytes = list.binaryData();
  connection.statement("UPDATE Z_METADATA SET Z_PLIST = ?").bind(bytes).execute();
}

}  // namespace vantrel
