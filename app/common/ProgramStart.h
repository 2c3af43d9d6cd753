#pragma once

#include "base/Error.h"

namespace vantrel {

/// Installs a handler that exits with kExitInternal and one line on standard error when an
/// allocation by `new` fails. Keeps the pointer `program`. Called first by every `main`.
void exitWhenOutOfMemory(const char* program);

/// Fails with kExitUsage if $VANTREL_GROUP_CONTAINER is a relative path: the library would use the
/// default container instead. Called by every program after its options were parsed.
Expected<void> checkEnvironment();

}  // namespace vantrel
