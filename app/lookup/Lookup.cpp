#include "lookup/Lookup.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "common/ExitCode.h"
#include "platform/qt/QtOperationQueue.h"
#include "platform/system/UrlSession.h"
#include "webservice/GeoNamesElevationOperation.h"
#include "webservice/GeoNamesTimeZoneOperation.h"
#include "webservice/GoogleElevationOperation.h"

namespace vantrel {

namespace {

using Json = nlohmann::json;
using Done = std::function<void(Expected<Json> result)>;

/// GeoNames' codes for a request that was understood, and has no answer.
constexpr std::array kNothingThere = {11, 14, 15};

/// A service that turns one away now may serve another time; an answer without sense stays so.
ExitCode exitCodeFor(const Error& error) {
  const bool mayPass =
      error.domain == UrlSession::kErrorDomain ||
      (error.domain == WebServiceRequestOperation::kGeoNamesErrorDomain &&
       std::find(kNothingThere.begin(), kNothingThere.end(), error.code) == kNothingThere.end());
  return mayPass ? kExitUnavailable : kExitBadData;
}

const char* serviceName(const WebServiceRequestOperation& operation) {
  return operation.serverType() == WebServiceRequestOperation::kGeoNames ? "GeoNames" : "Google";
}

/// Turns failures into words for a person.
class FailureListener : public WebServiceRequestOperationDelegate {
 public:
  explicit FailureListener(Done done) : done_(std::move(done)) {}

  void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& operation,
                                                  const std::optional<Error>& error) override {
    std::string why = error ? error->localizedDescription : operation.serviceMessage().value_or("");
    if (why.empty()) why = "refused without a reason";
    const auto code = error ? exitCodeFor(*error) : kExitUnavailable;
    done_(tl::unexpected(failure(code, serviceName(operation), operation.withoutAccount(why))));
  }

 private:
  Done done_;
};

std::shared_ptr<PlaceRequestOperation> makeOperation(const LookupOptions& options,
                                                     const Done& done) {
  if (options.subject == LookupOptions::Subject::kTimeZone) {
    return std::make_shared<GeoNamesTimeZoneOperation>(options.place, [done](const auto& name) {
      done(Json{{"timezone", name ? Json(*name) : Json()}});
    });
  }
  const auto found = [done](const auto& altitude) {
    done(Json{{"altitude", altitude ? Json(*altitude) : Json()}});
  };
  if (options.google) return std::make_shared<GoogleElevationOperation>(options.place, found);
  return std::make_shared<GeoNamesElevationOperation>(options.place, found);
}

}  // namespace

Expected<Json> lookUp(const LookupOptions& options, const std::optional<Account>& account) {
  QEventLoop loop;
  std::optional<Expected<Json>> result;
  const Done done = [&](Expected<Json> brought) {
    result = std::move(brought);
    loop.quit();
  };
  const auto listener = std::make_shared<FailureListener>(done);
  const auto operation = makeOperation(options, done);
  operation->setDelegate(listener);
  if (account) {
    operation->setUsername(account->username);
    operation->setToken(account->key);
  }
  if (options.address) operation->setServiceAddress(*options.address);
  QtOperationQueue queue;
  queue.addOperation(operation);
  // An answer may bring no notice at all.
  QTimer::singleShot(std::chrono::milliseconds(static_cast<int>(options.wait * 1000)), &loop,
                     &QEventLoop::quit);
  loop.exec();
  operation->cancel();
  if (result) return std::move(*result);
  return tl::unexpected(
      failure(kExitUnavailable, serviceName(*operation), "no answer came in time"));
}

}  // namespace vantrel
