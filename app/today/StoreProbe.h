#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"

namespace vantrel {

/// Asks the store for one plan, apart from the widget, to which a store that cannot be read looks
/// like one without plans. To be made before anything else uses the store. Main thread.
class StoreProbe {
 public:
  StoreProbe();
  ~StoreProbe();

  /// What is wrong with the store, for a person; nothing when plans can be read.
  std::optional<Error> problem();
  /// Whether the store could not even be opened: it stays so for the life of the process.
  bool failedToOpen() const;

 private:
  class Listener;
  std::shared_ptr<Listener> listener_;
};

}  // namespace vantrel
