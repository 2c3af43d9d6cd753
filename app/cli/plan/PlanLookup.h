#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel::cli {

/// The plan that a person names: by object URI, unique identifier, or a prefix of that of at least
/// four characters, in either case. kExitMissing when there is none; kExitUsage, with the
/// candidates, when there are several or the prefix is too short.
Expected<std::shared_ptr<Planning>> planNamed(ManagedObjectContext& context,
                                              const std::string& text);

}  // namespace vantrel::cli
