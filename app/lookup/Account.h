#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "lookup/LookupOptions.h"

namespace vantrel {

/// Keys of the standard settings for the user's account. The settings have the paths of key files,
/// not keys, so that users can show their settings to others.
inline constexpr const char* kLookupUsername = "lookup_username";
inline constexpr const char* kLookupKeyFile = "lookup_keyFile";
inline constexpr const char* kLookupGoogleKeyFile = "lookup_googleKeyFile";

struct Account {
  std::string username;  ///< Empty for Google.
  std::string key;       ///< Empty if the account has no key.
};

/// Returns the account in `options`, otherwise the one in the settings; `nullopt` if neither has
/// one, for the program's account. Errors: kExitUsage if Google has no key or a key no user name;
/// kExitBadData for an invalid key file; those of reading the files.
Expected<std::optional<Account>> accountOfUser(const LookupOptions& options);

}  // namespace vantrel
