#pragma once

#include <filesystem>
#include <vector>

namespace vantrel {

/// A store that is being made: files beside their place, which are moved there when they are whole,
/// so that nobody ever sees a part of one. What is not published is removed, and what a program
/// that was stopped left of its drafts is removed when the next one for the same place is begun.
class StoreDraft {
 public:
  /// Makes an empty file, readable for the user alone. Throws StoreFailure when that cannot be, or
  /// when the log of a store that is missing stands in the way.
  explicit StoreDraft(std::filesystem::path place);
  ~StoreDraft();
  StoreDraft(const StoreDraft&) = delete;
  StoreDraft& operator=(const StoreDraft&) = delete;

  const std::filesystem::path& file() const { return file_; }
  /// Where a folder may be made that becomes the store's support folder.
  std::filesystem::path folder() const;
  /// Moves all to its place, the file last. No connection may be open to it, and its content must
  /// stand in the file alone. False, with nothing changed, when a file has come there meanwhile;
  /// throws StoreFailure when it cannot be moved.
  bool publish();

 private:
  void create();
  void removeStaleDrafts() const;
  void publishFolder();
  bool publishFile();

  std::filesystem::path place_;
  std::filesystem::path file_;
  int lock_ = -1;  ///< Open, and locked, as long as the draft is in use.
  /// What stands in its place already, to be taken away again unless all does.
  std::vector<std::filesystem::path> placed_;
};

}  // namespace vantrel
