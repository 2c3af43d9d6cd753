#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Error.h"
#include "platform/system/Operation.h"
#include "webservice/JsonAnswer.h"

namespace vantrel {

class WebServiceRequestOperation;

/// Receives the notices of a request. Main thread only.
class WebServiceRequestOperationDelegate {
 public:
  virtual ~WebServiceRequestOperationDelegate() = default;
  /// Called with true when a download starts, with false when it has ended or failed. For an answer
  /// from the cache only with false; never with false for Google's "OK" without results.
  virtual void webServiceRequestOperationNetworkIsActive(WebServiceRequestOperation& /*operation*/,
                                                         bool /*isActive*/) {}
  /// `error` is `nullopt` if Google returned an error: see serviceMessage().
  virtual void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& /*operation*/,
                                                          const std::optional<Error>& /*error*/) {}
};

/// A queued request to a geographic web service. Subclasses define the URL and process the result;
/// this class loads and decodes the answer and detects the errors of each service. Results and
/// notices arrive on the main queue, none after `cancel` (a running download continues unnoticed).
/// Google's "OK" without results causes neither a result nor an error: callers need a timeout. Not
/// thread-safe: configure before queueing.
class WebServiceRequestOperation : public Operation {
 public:
  static constexpr std::int32_t kGeoNames = 0;
  static constexpr std::int32_t kGoogle = 1;
  /// Domain of GeoNames errors. Their codes are those of GeoNames; kUnknownLookupError is an answer
  /// with neither a result nor an error.
  static constexpr const char* kGeoNamesErrorDomain = "org.geonames";
  static constexpr int kUnknownLookupError = 15;
  static constexpr double kTimeout = 10;  ///< Seconds.

  /// Creates a request with this program's account.
  WebServiceRequestOperation();

  /// Weak: owned by the caller.
  void setDelegate(std::weak_ptr<WebServiceRequestOperationDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  std::shared_ptr<WebServiceRequestOperationDelegate> delegate() const { return delegate_.lock(); }

  /// The account, which subclasses may use in the URL. Never logged.
  const std::string& username() const { return username_; }
  void setUsername(std::string username) { username_ = std::move(username); }
  const std::string& token() const { return token_; }
  void setToken(std::string token) { token_ = std::move(token); }
  /// Returns `text` with the account name and token replaced by "***" wherever they occur as whole
  /// words.
  std::string withoutAccount(std::string text) const;

  /// Selects the conventions of the answer: kGeoNames, or Google's for any other value.
  std::int32_t serverType() const { return serverType_; }
  void setServerType(std::int32_t serverType) { serverType_ = serverType; }

  /// Google's error message, otherwise its status. Main thread only, after the failure notice.
  const std::optional<std::string>& serviceMessage() const { return serviceMessage_; }

  /// Processes the cached answer if there is one, otherwise starts the download and returns.
  void main() override;

  void downloadStarted();
  void parseEnded(const JsonAnswer& result);
  void parseError(const std::optional<Error>& error);
  /// Decodes an answer and schedules parseEnded() or parseError() on the main queue. Thread-safe.
  void processData(std::string_view data);

  /// Abstract: these throw std::logic_error unless overridden.
  virtual std::string urlString() const;
  /// The key that every successful GeoNames answer contains.
  virtual std::string getCheckDataKey() const;
  virtual void processResponseWithResult(const JsonAnswer& result);

 private:
  using Self = std::shared_ptr<WebServiceRequestOperation>;
  Self self() { return std::static_pointer_cast<WebServiceRequestOperation>(shared_from_this()); }
  /// Calls `notice` on the main queue, unless the operation is cancelled before.
  void schedule(std::function<void(WebServiceRequestOperation& operation)> notice);
  void scheduleError(std::optional<Error> error, std::optional<std::string> serviceMessage = {});
  void finishLoading(const Expected<std::string>& body);
  void processGoogleAnswer(const JsonAnswer& answer);
  void processGeoNamesAnswer(const JsonAnswer& answer);
  void notifyNetworkIsActive(bool isActive);

  std::weak_ptr<WebServiceRequestOperationDelegate> delegate_;
  std::string username_;
  std::string token_;
  std::int32_t serverType_ = kGeoNames;
  std::optional<std::string> serviceMessage_;
};

}  // namespace vantrel
