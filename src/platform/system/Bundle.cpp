#include "platform/system/Bundle.h"

#include <unicode/locid.h>

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "base/Log.h"
#include "platform/archive/PropertyList.h"
#include "platform/text/Locale.h"

namespace vantrel {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFolderSuffix = ".lproj";
constexpr std::string_view kBase = "Base";

fs::path mainBundleRoot() {
  if (const char* set = std::getenv("VANTREL_BUNDLE"); set && *set) return fs::absolute(set);
  std::error_code error;
  const auto program = fs::read_symlink("/proc/self/exe", error);
  if (!error) {
    for (const char* place : {"bundle", "../share/vantrel"}) {
      auto root = (program.parent_path() / place).lexically_normal();
      if (fs::is_directory(root, error)) return root;
    }
  }
  return VANTREL_DATA_DIR;
}

/// The language and script of a tag, by default the usual script: "zh-Hans" for "zh-CN". Empty if
/// the tag is malformed.
std::string languageAndScript(const std::string& tag) {
  UErrorCode status = U_ZERO_ERROR;
  auto locale = icu::Locale::forLanguageTag(tag, status);
  locale.addLikelySubtags(status);
  if (U_FAILURE(status)) return {};
  return std::string(locale.getLanguage()) + "-" + locale.getScript();
}

/// The available language for a reader of `wanted`: the same, otherwise the shortest that differs
/// in the region only.
std::optional<std::string> match(const std::string& wanted,
                                 const std::vector<std::string>& available) {
  if (std::find(available.begin(), available.end(), wanted) != available.end()) return wanted;
  const auto script = languageAndScript(wanted);
  std::optional<std::string> best;
  for (const auto& tag : available) {
    if (best && best->size() <= tag.size()) continue;
    if (!script.empty() && languageAndScript(tag) == script) best = tag;
  }
  return best;
}

/// The languages of the .lproj folders, sorted, so that the result is the same everywhere.
std::vector<std::string> availableLanguages(const fs::path& root) {
  std::vector<std::string> languages;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(root, error)) {
    const auto name = entry.path().filename();
    if (name.extension() == kFolderSuffix) languages.push_back(name.stem());
  }
  std::sort(languages.begin(), languages.end());
  return languages;
}

}  // namespace

Bundle& Bundle::mainBundle() {
  static Bundle bundle(mainBundleRoot());
  return bundle;
}

std::optional<fs::path> Bundle::urlForResource(std::string_view name,
                                               std::string_view extension) const {
  const auto url = root_ / (std::string(name) + "." + std::string(extension));
  std::error_code error;
  if (!fs::exists(url, error)) return std::nullopt;
  return url;
}

const std::vector<std::string>& Bundle::localizations() const {
  if (localizations_) return *localizations_;
  const auto available = availableLanguages(root_);
  auto wanted = Locale::preferredLanguages();
  wanted.emplace_back("en");
  auto& found = localizations_.emplace();
  for (const auto& tag : wanted) {
    const auto language = match(tag, available);
    if (language && std::find(found.begin(), found.end(), *language) == found.end()) {
      found.push_back(*language);
    }
  }
  found.emplace_back(kBase);
  return found;
}

const StringTable& Bundle::table(std::string_view name) const {
  const std::lock_guard lock(mutex_);
  if (const auto known = tables_.find(name); known != tables_.end()) return known->second;
  auto& result = tables_[std::string(name)];
  std::error_code error;
  for (const auto& language : localizations()) {
    const auto url =
        root_ / (language + std::string(kFolderSuffix)) / (std::string(name) + ".strings");
    if (!fs::exists(url, error)) continue;
    const auto data = dataWithContentsOfURL(url);
    auto table = data ? stringTableWithData(*data) : tl::unexpected(data.error());
    if (table) {
      result = std::move(*table);
    } else {
      logLine(url.string() + ": " + table.error().localizedDescription);
    }
    break;
  }
  return result;
}

std::string Bundle::localizedString(std::optional<std::string_view> key, std::string_view value,
                                    std::string_view tableName) const {
  if (!key) return std::string(value);
  const auto& texts = table(tableName);
  if (const auto found = texts.find(*key); found != texts.end()) return found->second;
  return std::string(value.empty() ? *key : value);
}

}  // namespace vantrel
