#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The program's resources: models, the static store, string tables by language. Main thread.
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
  /// The text under `key` in the first table `name` (xx.lproj/name.strings) found by the system's
  /// languages, then English. A missing key reads as `value`, or as the key itself when `value` is
  /// empty; an absent key reads as `value`.
  std::string localizedString(std::optional<std::string_view> key, std::string_view value,
                              std::string_view table) const;
  /// The language of the string tables in use ("de").
  std::string preferredLocalization() const;

 private:
  using Table = std::map<std::string, std::string, std::less<>>;
  const Table& table(std::string_view name) const;

  std::filesystem::path root_;
  mutable std::map<std::string, Table, std::less<>> tables_;
};

}  // namespace vantrel
