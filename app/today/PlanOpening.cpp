#include "today/PlanOpening.h"

#include <filesystem>
#include <system_error>

#include "cli/ExitCode.h"
#include "cli/PlanLink.h"
#include "platform/Bundle.h"
#include "store/Database.h"
#include "today/StoreProbe.h"

namespace vantrel {

std::optional<Error> missingStore() {
  const auto store = Database::sharedInstance().groupStoreURL();
  std::error_code error;
  // A file without content would be made a store by opening it.
  if (store && std::filesystem::exists(*store, error) &&
      std::filesystem::file_size(*store, error) != 0) {
    return std::nullopt;
  }
  return cli::failure(cli::kExitMissing, store ? store->string() : "the application group's folder",
                      "there is no store yet; make one with: vantrel store sample");
}

Expected<std::shared_ptr<Planning>> planOfLink(const std::string& link) {
  const auto uri = cli::uriFromLink(link);
  if (!uri) {
    return tl::make_unexpected(
        cli::failure(cli::kExitBadData, "the link",
                     "leads to no plan; those look like vantrel://plan?id=x-coredata:%2F%2F..."));
  }
  if (auto missing = missingStore()) return tl::make_unexpected(std::move(*missing));
  StoreProbe probe;
  if (auto problem = probe.problem()) return tl::make_unexpected(std::move(*problem));
  auto plan = cli::planWithURI(*Database::sharedInstance().managedObjectContext(), *uri);
  if (!plan && cli::exitCodeForError(plan.error()) == cli::kExitMissing) {
    return tl::make_unexpected(cli::failure(cli::kExitMissing, "the link",
                                            "its plan is gone, or belongs to another store"));
  }
  return plan;
}

std::string messageForLinkError(const Error& error) {
  const auto text = [](const char* key) {
    return Bundle::mainBundle().localizedString(key, "", "Today");
  };
  if (error.domain == cli::failure(cli::kExitBadData, {}, {}).domain) {
    return text(error.code == cli::kExitBadData ? "today_link_invalid" : "today_link_plan_missing");
  }
  return error.localizedDescription;
}

}  // namespace vantrel
