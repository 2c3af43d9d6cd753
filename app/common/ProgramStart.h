#pragma once

#include "base/Error.h"

namespace vantrel {

/// Makes the process exit with kExitInternal and one line on standard error when memory runs out,
/// wherever that is. `program` must outlive the process. Called first by every `main`.
void exitWhenOutOfMemory(const char* program);

/// kExitUsage if $VANTREL_GROUP_CONTAINER is a relative path: the default container would be used
/// in its place. Called by every program once it knows that it has to do more than show its help.
Expected<void> checkEnvironment();

}  // namespace vantrel
