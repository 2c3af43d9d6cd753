#include "today/StoreProblem.h"

#include <memory>
#include <string>

#include "base/StringFormat.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Database.h"
#include "store/Planning.h"
#include "today/InterfaceText.h"

namespace vantrel {

namespace {

struct Listener : DatabaseDelegate {
  void databasePersistentStoreCoordinatorDidGetError(const std::string& text,
                                                     const std::string& /*title*/) override {
    message = text;
  }
  std::string message;
};

/// Receives the error of opening the store, which is reported once per process.
const Listener& listener() {
  static const auto shared = [] {
    auto made = std::make_shared<Listener>();
    Database::sharedInstance().setDelegate(made);
    return made;
  }();
  return *shared;
}

}  // namespace

bool storeFailedToOpen() {
  return !listener().message.empty();
}

std::optional<Error> storeProblem() {
  const Listener& told = listener();
  Error error;
  if (ManagedObjectContext* context = Database::sharedInstance().managedObjectContext()) {
    const auto plans =
        context->executeFetchRequest({.entityName = Planning::kEntityName, .fetchLimit = 1});
    if (plans) return std::nullopt;
    error = plans.error();
  }
  error.localizedDescription =
      storeFailedToOpen()
          ? told.message
          : stringWithFormat(localized("today_store_unreadable"), {error.localizedDescription});
  return error;
}

}  // namespace vantrel
