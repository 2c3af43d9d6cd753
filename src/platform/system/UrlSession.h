#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"

namespace vantrel {

/// A GET request.
struct UrlRequest {
  std::string url;              ///< Absolute, percent-encoded.
  double timeoutInterval = 60;  ///< Seconds without data until the load fails.
};

/// Loads from the network. A replaceable service: without one, a program never uses the network.
/// Thread-safe.
class UrlSession {
 public:
  /// Errors are of domain "UrlSession"; `userInfo["url"]` is the URL that failed.
  static constexpr const char* kErrorDomain = "UrlSession";
  /// Receives the complete body, for error statuses too. Called once, on a thread of the session,
  /// or never if the session is destroyed first.
  using Completion = std::function<void(Expected<std::string> body)>;

  virtual ~UrlSession() = default;
  /// Returns the stored body while it is fresh by its HTTP headers, otherwise `nullopt`. Blocks for
  /// disk access only.
  virtual std::optional<std::string> cachedResponse(const UrlRequest& request) = 0;
  /// Starts loading from the network, never from the cache, and returns at once.
  virtual void dataTask(const UrlRequest& request, Completion completion) = 0;

  /// The installed session, otherwise one that fails every load.
  static UrlSession& sharedSession();
  /// Null restores the default. Main thread only, before other threads use it.
  static void install(std::shared_ptr<UrlSession> session) { installed_ = std::move(session); }

 private:
  inline static std::shared_ptr<UrlSession> installed_;
};

}  // namespace vantrel
