#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Error.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// The user's format of a plan's line: "{day} {time}  {name}". Dates and times are in the current
/// locale and the plan's zone; unknown values are "--". "{{" and "}}" are literal braces; "\t",
/// "\n" and "\\" are escapes. Values of the plan are made safe for a terminal, literal text is not.
class PlanTemplate {
 public:
  /// `option` is the name in error messages. Errors: kExitUsage for an unknown field or an
  /// unmatched brace.
  static Expected<PlanTemplate> parsed(const std::string& option, const std::string& text);
  /// Returns all fields: "name, notes, …".
  static std::string fieldNames();

  /// Includes a line break at the end.
  std::string line(const Planning& plan) const;

 private:
  struct Formats;
  using Write = std::string (*)(const Planning& plan, const Formats& formats);
  struct Field {
    const char* name;
    Write write;
  };
  /// A field after the text before it; null in the last piece.
  struct Piece {
    std::string literal;
    Write write = nullptr;
  };

  static const std::vector<Field>& fields();
  /// Null if there is no such field.
  static Write fieldNamed(std::string_view name);

  std::vector<Piece> pieces_;
  std::shared_ptr<Formats> formats_;
};

}  // namespace vantrel::cli
