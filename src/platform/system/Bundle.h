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

/// The program's resources: models, the static store, string tables by language. Any thread.
class Bundle {
 public:
  explicit Bundle(std::filesystem::path root) : root_(std::move(root)) {}
  /// At $VANTREL_BUNDLE, else `bundle` beside the program, else ../share/vantrel from it, else
  /// /usr/share/vantrel. Found on the first call and kept.
  static Bundle& mainBundle();

  const std::filesystem::path& root() const { return root_; }
  /// The path of "name.extension" in the bundle's root; nothing when it is not there.
  std::optional<std::filesystem::path> urlForResource(std::string_view name,
                                                      std::string_view extension) const;
  /// The text under `key` in the first table of that name (xx.lproj/table.strings) found by the
  /// system's languages as they are on the first call, then in English, then in Base.lproj. "de-AT"
  /// finds de.lproj, "zh-CN" zh-Hans.lproj. A missing key reads as `value`, or as the key itself
  /// when `value` is empty; an absent key reads as `value`. A damaged table is empty, and told once
  /// on standard error.
  std::string localizedString(std::optional<std::string_view> key, std::string_view value,
                              std::string_view table) const;
  /// The language of the string tables in use ("de"); "en" when there are none.
  std::string preferredLocalization() const;

 private:
  const StringTable& table(std::string_view name) const;
  /// With the mutex held.
  const std::vector<std::string>& localizations() const;

  std::filesystem::path root_;
  /// Guards what is found on first use; found once, it does not change again.
  mutable std::mutex mutex_;
  /// The folders to look for a table in, best first; found on the first look-up.
  mutable std::optional<std::vector<std::string>> localizations_;
  mutable std::map<std::string, StringTable, std::less<>> tables_;
};

}  // namespace vantrel
