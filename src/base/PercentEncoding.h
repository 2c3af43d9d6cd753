#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The characters that may stand in a URL's host as they are: ASCII letters and digits and
/// "!$&'()*+,-.:;=[]_~".
inline constexpr std::string_view kUrlHostAllowedCharacterSet =
    "!$&'()*+,-.0123456789:;=ABCDEFGHIJKLMNOPQRSTUVWXYZ[]_abcdefghijklmnopqrstuvwxyz~";

/// Those that may stand anywhere in a URL: ASCII letters and digits and "-._~".
inline constexpr std::string_view kUrlUnreservedCharacterSet =
    "-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";

/// Every byte of `text` (UTF-8) outside `allowed` becomes "%XX", upper-case hexadecimal.
std::string percentEncoded(std::string_view text, std::string_view allowed);

/// The inverse; nothing when a '%' is not followed by two hexadecimal digits.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace vantrel
