#pragma once

#include <optional>
#include <string>

#include "base/Error.h"
#include "lookup/LookupOptions.h"

namespace vantrel {

/// Settings of vantrel alone that name an account of the user's own. Keys stand in files, so that
/// settings can be shown.
inline constexpr const char* kLookupUsername = "lookup_username";
inline constexpr const char* kLookupKeyFile = "lookup_keyFile";
inline constexpr const char* kLookupGoogleKeyFile = "lookup_googleKeyFile";

struct Account {
  std::string username;  ///< Empty for Google.
  std::string key;       ///< Empty where the service needs none.
};

/// The account of the options, else that of the settings; nothing when neither names one and the
/// program's own will do. Google needs one.
Expected<std::optional<Account>> accountOfUser(const LookupOptions& options);

}  // namespace vantrel
