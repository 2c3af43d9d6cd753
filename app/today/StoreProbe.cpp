#include "today/StoreProbe.h"

#include "base/Log.h"
#include "objectstore/ManagedObjectContext.h"
#include "platform/Bundle.h"
#include "store/Database.h"

namespace vantrel {

class StoreProbe::Listener : public DatabaseDelegate {
 public:
  void databasePersistentStoreCoordinatorDidGetError(const std::string& message,
                                                     const std::string& /*title*/) override {
    message_ = message;
  }
  const std::string& message() const { return message_; }

 private:
  std::string message_;
};

StoreProbe::StoreProbe() : listener_(std::make_shared<Listener>()) {
  Database::sharedInstance().setDelegate(listener_);
}

StoreProbe::~StoreProbe() = default;

bool StoreProbe::failedToOpen() const {
  return !listener_->message().empty();
}

std::optional<Error> StoreProbe::problem() {
  ManagedObjectContext* context = Database::sharedInstance().managedObjectContext();
  Error error;
  if (context) {
    FetchRequest request;
    request.entityName = "Planning";
    request.fetchLimit = 1;
    const auto plans = context->executeFetchRequest(request);
    if (plans) return std::nullopt;
    error = plans.error();
  }
  if (failedToOpen()) {
    error.localizedDescription = listener_->message();
  } else {
    error.localizedDescription = stringWithFormat(
        Bundle::mainBundle().localizedString("today_store_unreadable", "", "Today"),
        {error.localizedDescription});
  }
  return error;
}

}  // namespace vantrel
