#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"

namespace vantrel {

/// Returns the object URI in a deep link "vantrel://plan?id=…". Links are untrusted input: anything
/// but the URI of a plan, encoded as the widget encodes it, fails with kExitBadData.
Expected<std::string> uriFromLink(const std::string& link);

/// Returns the plan of an object URI. Errors: kExitMissing if the plan was removed or is in another
/// store, kExitBadData if `uri` is not the URI of a plan.
Expected<std::shared_ptr<Planning>> planWithURI(ManagedObjectContext& context,
                                                const std::string& uri);

}  // namespace vantrel
