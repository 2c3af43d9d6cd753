#include "platform/system/Bundle.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <array>
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

/// Language and script of a tag, the script being the usual one when the tag names none: who reads
/// "zh-CN" reads "zh-Hans", and not "zh-Hant".
std::string writing(const std::string& tag) {
  std::array<char, ULOC_FULLNAME_CAPACITY> identifier{};
  std::array<char, ULOC_FULLNAME_CAPACITY> full{};
  std::array<char, ULOC_LANG_CAPACITY> language{};
  std::array<char, ULOC_SCRIPT_CAPACITY> script{};
  UErrorCode status = U_ZERO_ERROR;
  uloc_forLanguageTag(tag.c_str(), identifier.data(), ULOC_FULLNAME_CAPACITY, nullptr, &status);
  uloc_addLikelySubtags(identifier.data(), full.data(), ULOC_FULLNAME_CAPACITY, &status);
  uloc_getLanguage(full.data(), language.data(), ULOC_LANG_CAPACITY, &status);
  uloc_getScript(full.data(), script.data(), ULOC_SCRIPT_CAPACITY, &status);
  if (U_FAILURE(status)) return {};
  return std::string(language.data()) + "-" + script.data();
}

/// Which of the bundle's languages serves a reader of `wanted`: the same, else the one that differs
/// in the region only, the shortest first.
std::optional<std::string> match(const std::string& wanted,
                                 const std::vector<std::string>& available) {
  if (std::find(available.begin(), available.end(), wanted) != available.end()) return wanted;
  const auto wantedWriting = writing(wanted);
  std::optional<std::string> best;
  for (const auto& tag : available) {
    if (best && best->size() <= tag.size()) continue;
    if (!wantedWriting.empty() && writing(tag) == wantedWriting) best = tag;
  }
  return best;
}

/// The languages of the .lproj folders, in alphabetical order, which no file system promises.
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

std::string Bundle::preferredLocalization() const {
  const std::lock_guard lock(mutex_);
  const auto& language = localizations().front();
  return language == kBase ? "en" : language;
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
