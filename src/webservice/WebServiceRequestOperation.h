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
#include "webservice/WebServiceRequestOperationDelegate.h"

namespace vantrel {

/// A queued request to a geographic web service. A subclass says what to ask and takes the result;
/// this class loads, decodes and tells the services' ways of failing apart. Results and notices
/// come on the main queue, and none after `cancel`, though a load that is under way runs to its
/// end. Google's "OK" without results brings neither: who waits has to bound the wait. Set up on
/// one thread, before it is queued.
class WebServiceRequestOperation : public Operation {
 public:
  static constexpr std::int32_t kGeoNames = 0;
  static constexpr std::int32_t kGoogle = 1;
  /// Of errors that GeoNames tells; the codes are its own, and this one for an answer that is
  /// neither result nor error.
  static constexpr const char* kGeoNamesErrorDomain = "org.geonames";
  static constexpr int kUnknownLookupError = 15;
  static constexpr double kTimeout = 10;

  /// With the account of this program.
  WebServiceRequestOperation();

  /// Weak: the caller keeps it.
  void setDelegate(std::weak_ptr<WebServiceRequestOperationDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  std::shared_ptr<WebServiceRequestOperationDelegate> delegate() const { return delegate_.lock(); }

  /// The account, for subclasses to put into their URL. It stands in no log line.
  const std::string& username() const { return username_; }
  void setUsername(std::string username) { username_ = std::move(username); }
  const std::string& token() const { return token_; }
  void setToken(std::string token) { token_ = std::move(token); }
  /// The text with "***" for the account, wherever it stands as a word.
  std::string withoutAccount(std::string text) const;

  /// Whose conventions the answer follows: kGeoNames, or Google's for any other value.
  std::int32_t serverType() const { return serverType_; }
  void setServerType(std::int32_t serverType) { serverType_ = serverType; }

  /// What Google said when it refused. Main thread, from the failure's notice on.
  const std::optional<std::string>& serviceMessage() const { return serviceMessage_; }

  /// Answers from the cache, else starts the download and returns.
  void main() override;

  void downloadStarted();
  void parseEnded(const JsonAnswer& result);
  void parseError(const std::optional<Error>& error);
  /// Decodes an answer and schedules what follows from it. Any thread.
  void processData(std::string_view data);

  /// The subclass's own. Here they throw std::logic_error.
  virtual std::string urlString() const;
  /// The key whose presence marks a successful answer of GeoNames.
  virtual std::string getCheckDataKey() const;
  virtual void processResponseWithResult(const JsonAnswer& result);

 private:
  using Self = std::shared_ptr<WebServiceRequestOperation>;
  Self self() { return std::static_pointer_cast<WebServiceRequestOperation>(shared_from_this()); }
  /// Does it on the main queue, unless cancelled by then.
  void schedule(std::function<void(WebServiceRequestOperation& operation)> notice);
  void scheduleError(std::optional<Error> error, std::optional<std::string> serviceMessage = {});
  void finishLoading(const Expected<std::string>& body);
  void processGoogleAnswer(const JsonAnswer& answer);
  void processGeoNamesAnswer(const JsonAnswer& answer);
  void tellNetworkIsActive(bool isActive);

  std::weak_ptr<WebServiceRequestOperationDelegate> delegate_;
  std::string username_;
  std::string token_;
  std::int32_t serverType_ = kGeoNames;
  std::optional<std::string> serviceMessage_;
};

}  // namespace vantrel
