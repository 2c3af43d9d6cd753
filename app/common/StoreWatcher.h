#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace vantrel {

/// Tells when someone wrote to a store, by watching the store's folder: most commits touch only the
/// write-ahead log beside the store file. The shared-memory file does not count, readers write it
/// too. For a caller with an event loop of its own. One thread.
class StoreWatcher {
 public:
  enum class Change {
    kNone,
    kContent,   ///< The store may hold something new.
    kReplaced,  ///< Another file stands where the store was: who has it open reads the old one.
  };

  /// The store and its folder need not exist yet, and may vanish and come back.
  explicit StoreWatcher(const std::filesystem::path& store);
  ~StoreWatcher();
  StoreWatcher(const StoreWatcher&) = delete;
  StoreWatcher& operator=(const StoreWatcher&) = delete;

  /// Becomes readable when there may be a change; -1 when the system has no watches to give.
  int fileDescriptor() const { return descriptor_; }
  /// What happened since the last call, all events in one; never waits.
  Change read();

 private:
  using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
  static std::optional<FileIdentity> identityOf(const std::filesystem::path& file);
  void watchNearestFolder();
  bool drainEvents();
  bool concernsStore(std::uint32_t events, const char* name) const;

  std::filesystem::path store_;
  int descriptor_;
  int watch_ = -1;
  bool watchesStoreFolder_ = false;
  std::optional<FileIdentity> known_;
};

}  // namespace vantrel
