#include "objectstore/model/ManagedObjectID.h"

#include <atomic>
#include <charconv>
#include <map>
#include <mutex>
#include <utility>

#include "base/Uuid.h"

namespace vantrel {

namespace {

constexpr std::string_view kScheme = "x-coredata://";

}  // namespace

struct ManagedObjectID::Names {
  std::string storeUuid;
  std::string entityName;
};

const ManagedObjectID::Names* ManagedObjectID::namesFor(std::string_view storeUuid,
                                                        std::string_view entityName) {
  static std::mutex mutex;
  // Never destroyed: identifiers may outlive it at the end of the process.
  static auto& all = *new std::map<std::pair<std::string, std::string>, Names>;
  const std::lock_guard lock(mutex);
  const auto [entry, added] = all.try_emplace({std::string(storeUuid), std::string(entityName)});
  if (added) entry->second = {entry->first.first, entry->first.second};
  return &entry->second;
}

ManagedObjectID ManagedObjectID::permanentID(std::string_view storeUuid,
                                             std::string_view entityName, std::int64_t primaryKey) {
  return {namesFor(storeUuid, entityName), primaryKey};
}

ManagedObjectID ManagedObjectID::temporaryID(std::string_view entityName) {
  static std::atomic<std::int64_t> counter = 0;
  return {namesFor({}, entityName), -++counter};
}

const std::string& ManagedObjectID::entityName() const {
  static const std::string none;
  return names_ ? names_->entityName : none;
}

const std::string& ManagedObjectID::storeUuid() const {
  static const std::string none;
  return names_ ? names_->storeUuid : none;
}

std::string ManagedObjectID::URIRepresentation() const {
  std::string uri(kScheme);
  uri.append(storeUuid()).append("/").append(entityName());
  if (!isTemporaryID()) return uri.append("/p").append(std::to_string(key_));
  static const std::string processUuid = uuidString();
  return uri.append("/t").append(processUuid).append(std::to_string(-key_));
}

std::optional<PermanentObjectURI> parsePermanentObjectURI(std::string_view uri) {
  if (!uri.starts_with(kScheme)) return std::nullopt;
  uri.remove_prefix(kScheme.size());
  const auto entityAt = uri.find('/');
  if (entityAt == std::string_view::npos) return std::nullopt;
  const auto keyAt = uri.find('/', entityAt + 1);
  if (keyAt == std::string_view::npos) return std::nullopt;
  PermanentObjectURI result{uri.substr(0, entityAt),
                            uri.substr(entityAt + 1, keyAt - entityAt - 1)};
  const std::string_view key = uri.substr(keyAt + 1);
  if (result.storeUuid.empty() || result.entityName.empty() || !key.starts_with('p')) {
    return std::nullopt;
  }
  const char* end = key.data() + key.size();
  const auto [stop, error] = std::from_chars(key.data() + 1, end, result.primaryKey);
  if (error != std::errc() || stop != end || result.primaryKey <= 0) return std::nullopt;
  return result;
}

}  // namespace vantrel
