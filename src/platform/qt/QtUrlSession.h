#pragma once

#include <QThread>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/system/UrlSession.h"

namespace vantrel {

/// The network through Qt, in a thread of its own. Certificates are checked, redirects lead to
/// https or nowhere, no cookie is kept. Answers that tell their length are stored as their servers
/// allow, in a cache on disk that several processes may share; it holds neither URLs nor what
/// stands in them. Needs a QCoreApplication, and goes before it. Operations that use it have ended
/// by then.
class QtUrlSession : public UrlSession {
 public:
  struct Limits {
    std::size_t mostBytes = std::size_t{8} << 20;  ///< Of a body; a larger one is an error.
    /// Bounds every request's timeoutInterval, in seconds.
    double mostTimeout = 60;
    /// An answer that keeps dripping is given up after so many times its time-out.
    int mostTimeouts = 3;
    std::size_t mostCacheBytes = std::size_t{10} << 20;
  };

  /// Without `cacheDirectory` nothing is stored; it is made, 0700, when it is missing.
  explicit QtUrlSession(const std::optional<std::filesystem::path>& cacheDirectory, Limits limits);
  ~QtUrlSession() override;

  std::optional<std::string> cachedResponse(const UrlRequest& request) override;
  void dataTask(const UrlRequest& request, Completion completion) override;

 private:
  class Loader;
  QThread thread_;
  Loader* loader_;  ///< Lives in `thread_`, which deletes it.
};

}  // namespace vantrel
