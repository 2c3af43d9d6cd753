#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Error.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// How a person lays out the line of a plan: "{day} {time}  {name}". Dates and times are those of
/// the current locale, in the plan's own zone; what is unknown is "--". Braces are written "{{" and
/// "}}", a tab "\t", a line break "\n", a backslash "\\". Texts of the plan are safe for a
/// terminal; the rest is the person's own.
class PlanTemplate {
 public:
  /// kExitUsage for an unknown field or a brace that stands alone; `option` is what errors name.
  static Expected<PlanTemplate> parsed(const std::string& option, const std::string& text);
  /// "name, notes, ...": the fields there are.
  static std::string fieldNames();

  /// With a line break at the end.
  std::string line(const Planning& plan) const;

 private:
  struct Formats;
  using Write = std::string (*)(const Planning& plan, const Formats& formats);
  struct Field {
    const char* name;
    Write write;
  };
  /// What stands in front of a field, and how that is written; null behind the last one.
  struct Piece {
    std::string literal;
    Write write = nullptr;
  };

  static const std::vector<Field>& fields();
  /// How the field is written; else why there is none.
  static tl::expected<Write, std::string> fieldNamed(const std::string& name);

  std::vector<Piece> pieces_;
  std::shared_ptr<Formats> formats_;
};

}  // namespace vantrel::cli
