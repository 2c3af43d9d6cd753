#include "lookup/Account.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/ExitCode.h"
#include "platform/system/UserDefaults.h"

namespace vantrel {

namespace {

Error fileError(const std::string& file, int code) {
  return failure(exitCodeForReading(code), file, std::strerror(code));
}

/// Returns the first line of the file; "-" is standard input.
Expected<std::string> keyInFile(const std::string& file) {
  constexpr std::size_t kMostBytes = 4096;
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(
      std::fopen(file == "-" ? "/dev/stdin" : file.c_str(), "r"), &std::fclose);
  if (!stream) return tl::unexpected(fileError(file, errno));
  std::array<char, kMostBytes> bytes{};
  const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), stream.get());
  if (std::ferror(stream.get())) return tl::unexpected(fileError(file, errno));
  std::string key(bytes.data(), count);
  key.resize(std::min(key.size(), key.find('\n')));
  while (key.ends_with(' ') || key.ends_with('\r')) key.pop_back();
  const bool isPlain =
      std::all_of(key.begin(), key.end(), [](char c) { return c > ' ' && c < 0x7f; });
  if (!key.empty() && isPlain && count < kMostBytes) return key;
  return tl::unexpected(failure(kExitBadData, file, "expected a key on the first line"));
}

Expected<std::optional<Account>> accountWithKey(const std::string& username,
                                                const std::optional<std::string>& keyFile) {
  if (!keyFile) return Account{username, ""};
  return keyInFile(*keyFile).map([&](const auto& key) {
    return std::optional(Account{username, key});
  });
}

Expected<std::optional<Account>> googleAccount(const LookupOptions& options,
                                               const UserDefaults& settings) {
  const auto file = options.keyFile ? options.keyFile : settings.stringForKey(kLookupGoogleKeyFile);
  if (file) return accountWithKey("", file);
  return tl::unexpected(
      failure(kExitUsage, "--google",
              std::string("requires your own key; give --key-file or the setting ") +
                  kLookupGoogleKeyFile));
}

}  // namespace

Expected<std::optional<Account>> accountOfUser(const LookupOptions& options) {
  const UserDefaults& settings = UserDefaults::standardUserDefaults();
  if (const auto readable = settings.checkReadable(); !readable) {
    return tl::unexpected(readable.error());
  }
  if (options.google) return googleAccount(options, settings);
  // The key file of the settings belongs to the user name of the settings.
  if (options.username) return accountWithKey(*options.username, options.keyFile);
  const auto username = settings.stringForKey(kLookupUsername);
  const auto keyFile = options.keyFile ? options.keyFile : settings.stringForKey(kLookupKeyFile);
  if (username && !username->empty()) return accountWithKey(*username, keyFile);
  if (!keyFile) return std::optional<Account>();
  return tl::unexpected(
      failure(kExitUsage, "--key-file",
              std::string("requires a user; give --username or the setting ") + kLookupUsername));
}

}  // namespace vantrel
