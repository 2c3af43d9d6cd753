#include "platform/view/FixedTextMeasurer.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

double characterWidth(const Font& font) {
  return font.size / 2;
}

double lineHeight(const Font& font) {
  return font.size * 1.2;
}

/// The number of code points in UTF-8 text: of bytes that do not continue one.
double lengthOf(std::string_view text) {
  return static_cast<double>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

/// Removes the part before the first separator, and the separator, from `text`; returns the part.
std::string_view takeUpTo(char separator, std::string_view& text) {
  const std::string_view front = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(front.size() + 1, text.size()));
  return front;
}

/// Breaks paragraphs into lines and counts the lines and the characters of the longest one.
struct Wrapping {
  double charactersPerLine;
  double lines = 0;
  double longest = 0;

  void addParagraph(std::string_view text) {
    ++lines;
    double column = 0;
    for (bool first = true; first || !text.empty(); first = false) {
      const double length = lengthOf(takeUpTo(' ', text));
      if (!first) ++column;
      // Spaces at the end of a line may exceed it.
      if (length > 0 && column > 0 && column + length > charactersPerLine) {
        ++lines;
        column = 0;
      }
      if (length > charactersPerLine) {
        const double fullLines = std::ceil(length / charactersPerLine) - 1;
        lines += fullLines;
        column = length - fullLines * charactersPerLine;
        longest = charactersPerLine;
      } else if (length > 0) {
        column += length;
        longest = std::max(longest, column);
      }
    }
  }
};

}  // namespace

Size FixedTextMeasurer::sizeOfText(std::string_view text, const Font& font) const {
  return {lengthOf(text) * characterWidth(font), lineHeight(font)};
}

Size FixedTextMeasurer::boundingSizeOfText(std::string_view text, const Font& font,
                                           Size bounds) const {
  Wrapping wrapping{std::max(1.0, std::floor(bounds.width / characterWidth(font)))};
  while (!text.empty()) wrapping.addParagraph(takeUpTo('\n', text));
  return {wrapping.longest * characterWidth(font),
          std::min(wrapping.lines * lineHeight(font), bounds.height)};
}

}  // namespace vantrel
