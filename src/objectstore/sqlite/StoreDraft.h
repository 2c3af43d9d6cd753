#pragma once

#include <filesystem>
#include <vector>

#include "base/FileDescriptor.h"

namespace vantrel {

/// A store under construction: its files are created in a private directory in the target folder
/// and renamed once they are complete, so that no process ever sees an incomplete store. The
/// destructor removes a draft that was not published. The next draft in the same folder removes
/// those of killed processes: their marker files are not locked.
class StoreDraft {
 public:
  /// Creates an empty file with mode 0600. Throws StoreFailure if that fails, or if `place` has a
  /// write-ahead log but no store.
  explicit StoreDraft(const std::filesystem::path& place);
  ~StoreDraft();
  StoreDraft(const StoreDraft&) = delete;
  StoreDraft& operator=(const StoreDraft&) = delete;

  std::filesystem::path file() const;
  /// The support folder of `file`, to be published with it. Does not exist at first.
  std::filesystem::path folder() const;
  /// Replaces `file` by an empty one. Close all connections to it first. Throws StoreFailure.
  void clear();
  /// Moves the pictures to their final place, then the file, which must be complete without its log
  /// and without open connections. False if another process has created the store concurrently; the
  /// pictures stay, since that store may use them. Throws StoreFailure if moving fails.
  bool publish();

 private:
  void create();
  void remove();
  void removeStaleDrafts() const;
  void publishFolder();
  bool publishFile();

  std::filesystem::path place_;
  std::filesystem::path directory_;
  FileDescriptor lock_;  ///< The marker, locked while the draft is in use.
  /// Files already moved into place; removed again if publishing fails.
  std::vector<std::filesystem::path> placed_;
  bool isFolderPlaced_ = false;  ///< The same for the support folder.
};

}  // namespace vantrel
