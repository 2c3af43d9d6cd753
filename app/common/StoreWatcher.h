#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <utility>

#include "base/FileDescriptor.h"

namespace vantrel {

/// Reports that another program wrote to a store, or put another store in its place. For callers
/// with an event loop: they call `read` when `fileDescriptor` becomes readable, and every
/// `pollingInterval` seconds, since the kernel reports neither that a folder above the store was
/// renamed nor that a link was changed. Not thread-safe.
class StoreWatcher {
 public:
  enum class Change {
    kNone,
    kContent,   ///< The store was written to, created or removed.
    kReplaced,  ///< `store` is another file: a process that has it open still reads the old one.
  };

  /// The store and its folder need not exist, and may be removed and created again.
  explicit StoreWatcher(const std::filesystem::path& store);

  /// Becomes readable when there may be a change; -1 if the system has no descriptor left.
  int fileDescriptor() const { return events_.number(); }
  /// Whether the folder cannot be watched, so that the caller must call `read` every 2 seconds.
  bool isPolling() const { return watch_ < 0; }
  /// Seconds: 60, or 2 while `isPolling`.
  double pollingInterval() const;
  /// Returns kNone if the store has not changed since the last call, else the pending change.
  /// Never blocks. Readers of the store, and failed attempts to open it, change nothing.
  Change read();
  /// The largest change since the last `takeChange`.
  Change pendingChange() const { return pending_; }
  Change takeChange() { return std::exchange(pending_, Change::kNone); }

  /// How long to wait before reading the store after `change`: a burst of commits causes one
  /// refresh, which still seems immediate. Opening a store that is being copied could damage it.
  static constexpr std::chrono::milliseconds settlingTime(Change change) {
    return std::chrono::milliseconds(change == Change::kReplaced ? 500 : 150);
  }

 private:
  /// What a commit changes; all 0 for a missing or empty file.
  struct FileState {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    friend bool operator==(const FileState&, const FileState&) = default;
  };
  static FileState stateOf(const std::filesystem::path& file);
  /// Of the store, its write-ahead log and its rollback journal.
  using StoreState = std::array<FileState, 3>;
  StoreState currentState() const;
  void watchNearestFolder();

  std::filesystem::path store_;
  FileDescriptor events_;
  int watch_ = -1;
  StoreState state_;
  FileState lastStore_;  ///< As `state_`, but kept while the store is missing.
  Change pending_ = Change::kNone;
};

}  // namespace vantrel
