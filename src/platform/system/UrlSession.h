#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Error.h"

namespace vantrel {

/// What is asked for with GET. Loads always go to the network; only `cachedResponse` reads what is
/// stored.
struct UrlRequest {
  std::string url;              ///< Absolute, percent-encoded.
  double timeoutInterval = 60;  ///< Seconds without a byte from the server before it is given up.
};

/// Loads from the network. Replaceable: a program without one never reaches the network. Any
/// thread.
class UrlSession {
 public:
  /// Errors are of domain "UrlSession"; `userInfo["url"]` is the URL that failed.
  static constexpr const char* kErrorDomain = "UrlSession";
  /// The whole body, whatever the HTTP status. Runs once, on a thread of the session; never when
  /// the session ends before.
  using Completion = std::function<void(Expected<std::string> body)>;

  virtual ~UrlSession() = default;
  /// The stored body, as long as its server called it fresh; nothing otherwise. Waits for the disk.
  virtual std::optional<std::string> cachedResponse(const UrlRequest& request) = 0;
  /// Starts loading and returns at once.
  virtual void dataTask(const UrlRequest& request, Completion completion) = 0;

  /// The installed session; one that refuses every load when none was.
  static UrlSession& sharedSession();
  /// Null brings the default back. Main thread, before others ask.
  static void install(std::shared_ptr<UrlSession> session);
};

}  // namespace vantrel
