#include "today/StoreProblem.h"

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/Database.h"
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

/// Hears what is told once in the life of the process: why the store cannot be opened.
const Listener& listener() {
  static const auto shared = [] {
    auto made = std::make_shared<Listener>();
    Database::sharedInstance().setDelegate(made);
    return made;
  }();
  return *shared;
}

}  // namespace

std::optional<Error> missingStore() {
  const auto store = Database::sharedInstance().groupStoreURL();
  std::error_code error;
  // A file without content would be made a store by opening it; a link that leads nowhere is not.
  if (store && std::filesystem::exists(std::filesystem::symlink_status(*store, error)) &&
      std::filesystem::file_size(*store, error) != 0) {
    return std::nullopt;
  }
  return failure(kExitMissing, store ? store->string() : "the application group's folder",
                 "there is no store yet; make one with: vantrel store sample");
}

bool storeFailedToOpen() {
  return !listener().message.empty();
}

std::optional<Error> storeProblem() {
  const Listener& told = listener();
  Error error;
  if (ManagedObjectContext* context = Database::sharedInstance().managedObjectContext()) {
    const auto plans = context->executeFetchRequest({.entityName = "Planning", .fetchLimit = 1});
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
