#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "base/FileDescriptor.h"

namespace vantrel {

/// Reports that another program wrote to a store, or put another store in its place. For a caller
/// with an event loop of its own: it calls read() when fileDescriptor() becomes readable, and every
/// pollingInterval() seconds, since the kernel reports neither a folder that was renamed above the
/// store nor a link that points elsewhere. Not thread-safe.
class StoreWatcher {
 public:
  enum class Change {
    kNone,
    kContent,   ///< The store may hold something new.
    kReplaced,  ///< The path leads to another file: whoever has the store open reads the old one.
  };

  /// The store and its folder need not exist yet, and may vanish and come back.
  explicit StoreWatcher(const std::filesystem::path& store);

  /// Becomes readable when there may be a change; -1 if the system has no watch to spare.
  int fileDescriptor() const { return events_.number(); }
  /// Whether the system has no watch to spare, so that the caller must look every 2 seconds.
  bool isPolling() const { return watch_ < 0; }
  /// Seconds: 60, or 2 while `isPolling`.
  double pollingInterval() const;
  /// Compares the store with the last call; never waits. What other programs read, and what they
  /// open in vain, is no change.
  Change read();

 private:
  /// What a commit changes. A file that is missing or empty has size 0.
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
  /// Of the last store there was.
  FileState lastStore_;
};

}  // namespace vantrel
