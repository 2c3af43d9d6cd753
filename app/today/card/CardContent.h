#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/view/Label.h"
#include "today/InterfaceText.h"

namespace vantrel {

/// The content of a card: a header, and below it either the widget's labels or the texts of a
/// plan's sheet. The labels belong to the widget; their frames are in the coordinates of its view.
struct CardContent {
  struct Row {
    const Label* title;
    const Label* date;
  };
  struct Text {
    enum class Kind { kTitle, kWhen, kZone, kCaption, kDetail, kPlace };
    Kind kind;
    std::string text;
    int maximumLines = 0;  ///< 0 for any number.
  };
  /// A message between header and body, with a button.
  struct Bar {
    std::string text;
    std::string action;
  };

  std::string action;  ///< The text of the header's button; empty for none.
  std::optional<Bar> bar;
  std::vector<Row> rows;
  const Label* message = nullptr;  ///< Null while there are rows.
  Color untouchedText;             ///< The text colour of rows that no touch has coloured.
  double bodyHeight = 0;           ///< Of the widget; unused for texts.
  double bodyInset = 0;            ///< From the card's leading edge to the widget's view.
  std::vector<Text> texts;
  bool rightToLeft = interfaceIsRightToLeft();

  enum class Part { kNone, kRow, kAction, kBarAction };
  /// The part with the keyboard focus, the row under the pointer, and the part that is pressed.
  Part focused = Part::kNone;
  std::size_t focusedRow = 0;
  std::optional<std::size_t> hoveredRow;
  Part held = Part::kNone;
};

}  // namespace vantrel
