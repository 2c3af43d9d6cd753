#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel {

/// The object URI in a deep link "vantrel://plan?id=…". Links come from anywhere: nothing but the
/// URI of a plan, written as the widget writes it, gets through; kExitBadData for all else.
Expected<std::string> uriFromLink(const std::string& link);

/// The plan of an object URI; kExitMissing when it is gone or in another store, kExitBadData when
/// the text names no plan.
Expected<std::shared_ptr<Planning>> planWithURI(ManagedObjectContext& context,
                                                const std::string& uri);

}  // namespace vantrel
