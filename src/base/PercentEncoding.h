#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The characters that need no encoding in the host of a URL.
inline constexpr std::string_view kUrlHostAllowedCharacterSet =
    "!$&'()*+,-.0123456789:;=ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_abcdefghijklmnopqrstuvwxyz~";

/// The characters that need no encoding anywhere in a URL.
inline constexpr std::string_view kUrlUnreservedCharacterSet =
    "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";

/// Replaces every byte of `text` that is not in `allowed` by "%XX" in upper-case hexadecimal.
std::string percentEncoded(std::string_view text, std::string_view allowed);

/// The inverse; `nullopt` if two hexadecimal digits do not follow a '%'.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace vantrel
