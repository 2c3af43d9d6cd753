#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/StringTable.h"

namespace vantrel {

/// The program's resources: models, the static store, and string tables by language. Thread-safe.
class Bundle {
 public:
  explicit Bundle(std::filesystem::path root) : root_(std::move(root)) {}
  /// The bundle in $VANTREL_BUNDLE if that is set, otherwise the first existing of `bundle` and
  /// ../share/vantrel beside the program, otherwise the installed one.
  static Bundle& mainBundle();

  const std::filesystem::path& root() const { return root_; }
  /// The path of "name.extension" in the bundle; `nullopt` if it does not exist.
  std::optional<std::filesystem::path> urlForResource(std::string_view name,
                                                      std::string_view extension) const;
  /// Returns the text for `key` in `table`, which is the first existing
  /// LANGUAGE.lproj/TABLE.strings of the user's languages, English, and Base. "de-AT" also matches
  /// de.lproj, and "zh-CN" zh-Hans.lproj. The languages are those of the first call. If the key is
  /// not found, returns `value`, or the key if `value` is empty; without a key, returns `value`. A
  /// damaged table is empty and logged once.
  std::string localizedString(std::optional<std::string_view> key, std::string_view value,
                              std::string_view table) const;

 private:
  const StringTable& table(std::string_view name) const;
  /// The mutex must be held.
  const std::vector<std::string>& localizations() const;

  std::filesystem::path root_;
  mutable std::mutex mutex_;
  /// The .lproj folders to search, best first. Set by the first search, as each table.
  mutable std::optional<std::vector<std::string>> localizations_;
  mutable std::map<std::string, StringTable, std::less<>> tables_;
};

}  // namespace vantrel
