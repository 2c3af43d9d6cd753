#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/view/Label.h"
#include "today/InterfaceText.h"

namespace vantrel {

/// What a card shows at one moment: below its header either the widget's labels or the texts of a
/// plan's sheet. Labels belong to the widget's life and have the frames that its layout gave them,
/// in the coordinates of its view.
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
  /// A line between header and body, with one thing to do about it.
  struct Bar {
    std::string text;
    std::string action;
  };

  std::string action;  ///< The word to press in the header; empty when there is none.
  std::optional<Bar> bar;
  std::vector<Row> rows;
  const Label* message = nullptr;  ///< Null while there are rows.
  Color untouchedText;             ///< Of a row that no touch has coloured.
  double bodyHeight = 0;           ///< Of the widget; texts have the height that they need.
  double bodyInset = 0;            ///< From the card's leading edge to the widget's view.
  std::vector<Text> texts;
  bool rightToLeft = interfaceIsRightToLeft();

  enum class Part { kNone, kRow, kAction, kBarAction };
  /// The part with the keyboard focus, the row under the pointer, and the part that is held down.
  Part focused = Part::kNone;
  std::size_t focusedRow = 0;
  std::optional<std::size_t> hoveredRow;
  Part held = Part::kNone;
};

}  // namespace vantrel
