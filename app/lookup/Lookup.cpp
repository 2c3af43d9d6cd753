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

/// GeoNames' codes for valid requests without a result.
constexpr std::array kNothingThere = {11, 14, 15};

/// Temporary errors are kExitUnavailable; an invalid answer or a missing result stays the same.
ExitCode exitCodeFor(const Error& error) {
  const bool isTemporary =
      error.domain == UrlSession::kErrorDomain ||
      (error.domain == WebServiceRequestOperation::kGeoNamesErrorDomain &&
       std::find(kNothingThere.begin(), kNothingThere.end(), error.code) == kNothingThere.end());
  return isTemporary ? kExitUnavailable : kExitBadData;
}

const char* serviceName(const WebServiceRequestOperation& operation) {
  return operation.serverType() == WebServiceRequestOperation::kGeoNames ? "GeoNames" : "Google";
}

/// Converts failures to errors with an exit code and a message.
class FailureListener : public WebServiceRequestOperationDelegate {
 public:
  explicit FailureListener(Done done) : done_(std::move(done)) {}

  void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& operation,
                                                  const std::optional<Error>& error) override {
    std::string why = error ? error->localizedDescription : operation.serviceMessage().value_or("");
    if (why.empty()) why = "request rejected without a reason";
    const auto code = error ? exitCodeFor(*error) : kExitUnavailable;
    done_(tl::unexpected(failure(code, serviceName(operation), operation.withoutAccount(why))));
  }

 private:
  Done done_;
};

std::shared_ptr<PlaceRequestOperation> createOperation(const LookupOptions& options,
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
  const Done done = [&](Expected<Json> received) {
    result = std::move(received);
    loop.quit();
  };
  const auto listener = std::make_shared<FailureListener>(done);
  const auto operation = createOperation(options, done);
  operation->setDelegate(listener);
  if (account) {
    operation->setUsername(account->username);
    operation->setToken(account->key);
  }
  if (options.address) operation->setServiceAddress(*options.address);
  QtOperationQueue queue;
  queue.addOperation(operation);
  // Google's "OK" without results calls neither the delegate nor the completion.
  QTimer::singleShot(std::chrono::milliseconds(static_cast<int>(options.wait * 1000)), &loop,
                     &QEventLoop::quit);
  loop.exec();
  operation->cancel();
  if (result) return std::move(*result);
  return tl::unexpected(failure(kExitUnavailable, serviceName(*operation), "no answer in time"));
}

}  // namespace vantrel
