#pragma once

#include <optional>

#include "base/Error.h"

namespace vantrel {

/// What is wrong with the store, for a person; nothing when plans can be read. Asks for one plan,
/// apart from the widget, to which a store that cannot be read looks like one without plans. To be
/// called before anything else uses the store. Main thread.
std::optional<Error> storeProblem();
/// Whether the store could not even be opened: it stays so for the life of the process.
bool storeFailedToOpen();

}  // namespace vantrel
