#pragma once

#include <memory>
#include <optional>
#include <string>

#include "objectstore/ManagedObjectContext.h"
#include "store/Planning.h"
#include "support/Guards.h"

namespace vantrel::test {

/// The shared store of this process in a group container of its own. Make it before anything asks
/// for the database, which is built once per process.
class PlanStore {
 public:
  std::filesystem::path container() const { return directory_.path(); }
  std::filesystem::path file() const { return directory_ / "Vantrel.sqlite"; }
  ManagedObjectContext& context();
  /// A new plan, not saved; nothing stays absent.
  std::shared_ptr<Planning> add(const std::optional<std::string>& name,
                                const std::optional<Date>& date,
                                const std::optional<std::string>& timezone = std::nullopt);
  void save();

 private:
  TemporaryDirectory directory_;
  EnvironmentGuard container_{"VANTREL_GROUP_CONTAINER", directory_.path().string()};
};

}  // namespace vantrel::test
