#pragma once

#include <QThread>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>

#include "platform/system/UrlSession.h"

namespace vantrel {

/// Loads through Qt, in a separate thread. Verifies certificates, follows redirects to https only
/// and keeps no cookies. Caches responses with a known length as their HTTP headers allow.
/// Processes may share the cache folder, which contains no URLs, as they contain accounts and
/// places. Requires a QCoreApplication, and must be destroyed before it and after the operations
/// that use it.
class QtUrlSession : public UrlSession {
 public:
  struct Limits {
    std::size_t mostBytes = std::size_t{8} << 20;  ///< Of a body; larger ones fail.
    /// Upper limit of `timeoutInterval`, in seconds.
    double mostTimeout = 60;
    /// A load may take this many times its time-out in all, so that slow responses end.
    int mostTimeouts = 3;
    std::size_t mostCacheBytes = std::size_t{10} << 20;
  };

  /// Creates `cacheDirectory` with mode 0700 if it is missing. Without it, caches nothing.
  explicit QtUrlSession(const std::optional<std::filesystem::path>& cacheDirectory, Limits limits);
  ~QtUrlSession() override;

  std::optional<std::string> cachedResponse(const UrlRequest& request) override;
  void dataTask(const UrlRequest& request, Completion completion) override;

 private:
  class Loader;
  QThread thread_;
  Loader* loader_;  ///< Belongs to `thread_`, which deletes it.
};

}  // namespace vantrel
