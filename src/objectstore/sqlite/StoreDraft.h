#pragma once

#include <filesystem>
#include <vector>

#include "base/FileDescriptor.h"

namespace vantrel {

/// A store that is being created: files in a directory of their own beside their place, which are
/// moved there once they are complete, so that nobody ever sees a part of one. The destructor
/// removes what is not published. What a killed process left is removed by the next draft in the
/// same folder, which knows it by a marker that its process no longer locks.
class StoreDraft {
 public:
  /// Creates an empty file, readable for the user alone. Throws StoreFailure if it cannot, or if
  /// the log of a missing store is in the way.
  explicit StoreDraft(const std::filesystem::path& place);
  ~StoreDraft();
  StoreDraft(const StoreDraft&) = delete;
  StoreDraft& operator=(const StoreDraft&) = delete;

  std::filesystem::path file() const;
  /// The support folder of `file`, which becomes that of the store. Does not exist at first.
  std::filesystem::path folder() const;
  /// Replaces `file` by an empty one. No connection may be open to it. Throws StoreFailure.
  void clear();
  /// Moves the pictures to their place, then the file. No connection may be open to it, and its
  /// content must be in the file alone. False if another process has created the store by then; the
  /// pictures stay, since the other one may use them. Throws StoreFailure if moving fails.
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
  /// What stands in its place already, to be taken away again unless all does.
  std::vector<std::filesystem::path> placed_;
  bool isFolderPlaced_ = false;  ///< The same for the complete support folder.
};

}  // namespace vantrel
