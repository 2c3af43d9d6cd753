#include "objectstore/sqlite/StoreMetadata.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
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
/// That of the stores whose layout this program writes.
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

/// Over each entity's name and hash, by name.
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

/// Over the hashes alone, in the same order.
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

/// Puts what depends on the model into the list.
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

/// Nothing when the store has none, or none that can be read.
PropertyList readList(SQLite::Statement& row, int column) {
  const auto content = row.getColumn(column);
  const auto* bytes = static_cast<const std::byte*>(content.getBlob());
  if (!bytes) return {};
  auto list =
      PropertyList::propertyListWithData({bytes, static_cast<std::size_t>(content.getBytes())});
  return list ? *list : PropertyList();
}

constexpr const char* kSelect = "SELECT Z_VERSION, Z_UUID, Z_PLIST FROM Z_METADATA LIMIT 1";

}  // namespace

StoreMetadata readStoreMetadata(StoreConnection& connection) {
  if (!connection.tableExists("Z_METADATA") || !connection.tableExists("Z_PRIMARYKEY")) {
    failStore(StoreErrorCode::kNotAStore, "the file is a database, but not a store");
  }
  const auto query = connection.statement(kSelect);
  if (!query->executeStep()) failStore(StoreErrorCode::kDamaged, "the store has no identity");
  StoreMetadata metadata;
  metadata.version = query->getColumn(0).getInt();
  metadata.uuid = query->getColumn(1).getString();
  const PropertyList list = readList(*query, 2);
  if (metadata.uuid.empty()) failStore(StoreErrorCode::kDamaged, "the store has no identity");
  for (const auto& [name, value] : list[kHashes].entries()) {
    const auto data = value.asData();
    VersionHash hash{};
    if (!data || data->size() != hash.size()) {
      // A hash of another kind agrees with none of ours.
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
  const auto insert =
      connection.statement("INSERT INTO Z_METADATA (Z_VERSION, Z_UUID, Z_PLIST) VALUES (1, ?, ?)");
  insert->bind(1, uuidString());
  insert->bind(2, bytes.data(), static_cast<int>(bytes.size()));
  insert->exec();
}

void updateStoreMetadata(StoreConnection& connection, const ManagedObjectModel& model) {
  const auto query = connection.statement(kSelect);
  PropertyList list = query->executeStep() ? readList(*query, 2) : PropertyList();
  if (!list) list = PropertyList::dictionary();
  describeModel(list, model);
  const Data bytes = list.binaryData();
  const auto update = connection.statement("UPDATE Z_METADATA SET Z_PLIST = ?");
  update->bind(1, bytes.data(), static_cast<int>(bytes.size()));
  update->exec();
}

}  // namespace vantrel
