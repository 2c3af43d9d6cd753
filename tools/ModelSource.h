#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/Error.h"
#include "objectstore/model/EntityDescription.h"

namespace vantrel {

/// One version of a model.
struct ModelVersion {
  std::string identifier;
  std::vector<EntityDescription> entities;
};

struct ModelSource {
  std::string name;
  std::vector<ModelVersion> versions;  ///< The last one is the current one.
};

/// Parses the source text of a model, one statement per line; `#` starts a comment:
///
///     model NAME
///     versions IDENTIFIER…
///     entity NAME [since=V]
///       attribute NAME TYPE [optional] [indexed] [external] [transient] [default=VALUE] [since=V]
///       relationship NAME one|many ENTITY [inverse=NAME] [delete=none|nullify|cascade|deny]
///                                         [ordered] [since=V]
///
/// Types are integer16, integer32, integer64, boolean, decimal, double, float, date, string, uri,
/// uuid, binary and transformable; numbers, booleans and strings without blanks have defaults.
/// Errors start with the line number, or name the relationship without a matching inverse.
Expected<ModelSource> modelSourceWithText(std::string_view text);

}  // namespace vantrel
