#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Texts that others wrote, made safe for a terminal: control characters, line breaks, direction
/// overrides and bytes that are no UTF-8 are shown as U+FFFD, white space as one space each.
std::string printable(std::string_view text);

/// Stands for what is unknown.
inline constexpr const char* kUnknown = "--";
/// The printable text; kUnknown for none and for an empty one.
std::string shown(const std::optional<std::string>& text);

/// The printable beginning of an identifier: enough to distinguish objects in any store made by
/// hand.
std::string shortIdentifier(std::string_view identifier);

/// `printable` for text of several lines: line breaks stay, each followed by `indent`.
std::string printableLines(std::string_view text, std::string_view indent);

/// `printable` for a file shown on a terminal: tabs and line ends stay.
std::string printableFile(std::string_view text);

/// Returns valid UTF-8 for files: U+FFFD for control characters except tabs and line breaks, and
/// for the noncharacters that XML 1.0 forbids.
std::string fileText(std::string_view text);

/// JSON text with the characters that `printable` replaces written as \uXXXX.
std::string printableJson(std::string_view json);

/// How many cells of a terminal a printable text takes: two for East Asian wide characters and
/// emoji, none for marks that join the character before.
std::size_t cellWidth(std::string_view text);

/// The text with spaces behind it up to `cells`; unchanged when it is as wide already.
std::string paddedToCells(std::string text, std::size_t cells);

}  // namespace vantrel
