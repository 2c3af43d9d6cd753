#pragma once

#include <optional>

#include "base/Error.h"

namespace vantrel {

/// Returns why the plans cannot be read, as a localized text, or `nullopt`. It fetches one plan,
/// since the widget shows a store that cannot be read as one without plans. Call it before anything
/// else uses the store. Main thread only.
std::optional<Error> storeProblem();
/// Whether the store could not be opened. This process cannot open it later either.
bool storeFailedToOpen();

}  // namespace vantrel
