#include <memory>
#include <string>

#include "Targets.h"
#include "platform/system/MainQueue.h"
#include "platform/system/SerialMainQueue.h"
#include "webservice/WebServiceRequestOperation.h"

namespace vantrel::fuzz {

namespace {

class Request : public WebServiceRequestOperation, public WebServiceRequestOperationDelegate {
 public:
  explicit Request(std::int32_t serverType) { setServerType(serverType); }
  std::string urlString() const override { return "https://example.invalid/"; }
  std::string getCheckDataKey() const override { return "srtm3"; }
  void processResponseWithResult(const JsonAnswer& result) override {
    ++notices;
    result["srtm3"].asNumber();
    result["elevation"].intValue();
    result["status"]["message"].asString();
  }
  void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& /*operation*/,
                                                  const std::optional<Error>& /*error*/) override {
    ++notices;
  }
  int notices = 0;
};

}  // namespace

/// The first byte selects the service.
void webAnswer(Bytes input) {
  static const auto queue = [] {
    auto made = std::make_shared<SerialMainQueue>();
    MainQueue::install(made);
    return made;
  }();
  if (input.empty()) return;
  const std::int32_t serverType = static_cast<std::int32_t>(input.front()) % 2;
  const auto request = std::make_shared<Request>(serverType);
  request->setDelegate(request);
  request->processData(textOf(input.subspan(1)));
  queue->runUntilEmpty();
  const int least = serverType == WebServiceRequestOperation::kGeoNames ? 1 : 0;
  require(request->notices >= least && request->notices <= 1,
          "GeoNames posts one notification, Google at most one");
}

}  // namespace vantrel::fuzz
