#pragma once

#include <string>

#include "base/Error.h"
#include "cli/Console.h"
#include "cli/JsonText.h"
#include "geo/VTObserver.h"
#include "platform/system/UserDefaults.h"

namespace vantrel::cli {

/// The planner's observer; a fresh one when the settings hold none.
struct StoredObserver {
  VTObserver observer;
  bool isStored = false;
};
/// kExitBadData when the settings hold something else in its place.
Expected<StoredObserver> storedObserver(const UserDefaults& defaults);

/// Metres; null for a mark that stands for no altitude.
Json jsonOfAltitude(float altitude);
/// What is known of the observer, with the texts that its pin shows.
Json jsonOfObserver(const StoredObserver& observer);
std::string textOfObserver(const StoredObserver& observer, const Console& console);

}  // namespace vantrel::cli
