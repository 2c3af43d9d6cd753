#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Label.h"

namespace vantrel {

/// What the card shows at one moment. Labels belong to the widget's life and have the frames that
/// its layout gave them, in the coordinates of its view.
struct CardContent {
  struct Row {
    const Label* title;
    const Label* date;
  };
  /// A line between header and widget, with one thing to do about it.
  struct Bar {
    std::string text;
    std::string action;
  };

  std::string name = "Vantrel";
  std::string toggle;  ///< "Show more" or "Show less"; empty when the widget has no modes.
  std::optional<Bar> bar;
  std::vector<Row> rows;
  const Label* message = nullptr;  ///< Null while there are rows.
  Color untouchedText;             ///< Of a row that no touch has coloured.
  double bodyHeight = 0;
  double bodyInset = 0;  ///< From the card's leading edge to the widget's view.
  bool rightToLeft = false;

  /// Where the keyboard is, and what is held down.
  enum class Part { kNone, kRow, kToggle, kBarAction };
  Part focused = Part::kNone;
  std::size_t focusedRow = 0;
  Part held = Part::kNone;
};

}  // namespace vantrel
