#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Error.h"

namespace vantrel::cli {

/// What a store file says of itself, and what can be counted in it.
struct StoreInfo {
  std::filesystem::path path;
  std::string uuid;
  std::vector<std::string> modelVersions;        ///< Of the store.
  std::vector<std::string> bundleModelVersions;  ///< Of the model that it is compared with.
  /// "current" fits; "older" is migrated when it is opened for writing; "foreign" was written with
  /// another model, serves and is left as it is; "newer" and "incompatible" cannot be used.
  std::string model;
  std::string journal;               ///< "wal" or "rollback".
  std::uintmax_t size = 0;           ///< Bytes of the file.
  std::uintmax_t walSize = 0;        ///< Bytes of the write-ahead log beside it.
  std::optional<std::size_t> plans;  ///< Nothing where the store cannot be counted.
  std::optional<std::size_t> customPois;
  std::optional<std::size_t> customCameras;
  std::optional<std::size_t> images;
};

/// Reads it all without opening the store for writing.
Expected<StoreInfo> storeInfo(const std::filesystem::path& path);

/// For people, and for programs.
std::string textForStoreInfo(const StoreInfo& info);
std::string jsonForStoreInfo(const StoreInfo& info);

}  // namespace vantrel::cli
