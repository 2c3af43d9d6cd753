#pragma once

#include <string>

#include "base/Error.h"
#include "cli/Console.h"
#include "cli/JsonText.h"
#include "geo/VTObserver.h"
#include "platform/system/UserDefaults.h"

namespace vantrel::cli {

/// The planner's observer; the default one if the settings have none.
struct StoredObserver {
  VTObserver observer;
  bool isStored = false;
};
/// Reads the observer. Fails with kExitBadData if the stored value is not an archived observer.
Expected<StoredObserver> storedObserver(const UserDefaults& defaults);

/// Returns metres; null if the altitude is unknown.
Json jsonOfAltitude(float altitude);
/// All values of the observer, with the texts that its pin shows.
Json jsonOfObserver(const StoredObserver& observer);
std::string textOfObserver(const StoredObserver& observer, const Console& console);

}  // namespace vantrel::cli
