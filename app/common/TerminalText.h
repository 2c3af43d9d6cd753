#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Functions for text from untrusted sources. Thread-safe, O(n).

/// Returns `text` made safe for a terminal: control characters, Unicode line separators, direction
/// overrides and invalid UTF-8 become U+FFFD; each tab, line feed and carriage return a space.
std::string printable(std::string_view text);

/// Shown for unknown values.
inline constexpr const char* kUnknown = "--";
/// Returns the printable text; kUnknown if it is `nullopt` or empty.
std::string shown(const std::optional<std::string>& text);

/// Returns the first eight characters of an identifier, made printable.
std::string shortIdentifier(std::string_view identifier);

/// `printable` for several lines: keeps line feeds and adds `indent` after each.
std::string printableLines(std::string_view text, std::string_view indent);

/// `printable` for a file shown on a terminal: keeps tabs and line ends.
std::string printableFile(std::string_view text);

/// Returns valid UTF-8 for files: U+FFFD for control characters except tabs and line breaks, and
/// for the noncharacters that XML 1.0 forbids.
std::string fileText(std::string_view text);

/// Returns `json` with the characters that `printable` replaces written as \uXXXX.
std::string printableJson(std::string_view json);

/// Returns how many terminal cells a printable text occupies: two for East Asian wide characters
/// and emoji, none for combining marks.
std::size_t cellWidth(std::string_view text);

/// Returns `text` padded with spaces on the right to `cells`; unchanged if it is that wide already.
std::string paddedToCells(std::string text, std::size_t cells);

}  // namespace vantrel
