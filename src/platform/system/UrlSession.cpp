#include "platform/system/UrlSession.h"

#include <utility>

namespace vantrel {

namespace {

class NoSession : public UrlSession {
 public:
  std::optional<std::string> cachedResponse(const UrlRequest& /*request*/) override { return {}; }
  void dataTask(const UrlRequest& request, Completion completion) override {
    completion(tl::unexpected(
        Error{kErrorDomain, 0, "This program has no network session.", {{"url", request.url}}}));
  }
};

std::shared_ptr<UrlSession>& installedSession() {
  static std::shared_ptr<UrlSession> session;
  return session;
}

}  // namespace

UrlSession& UrlSession::sharedSession() {
  if (installedSession()) return *installedSession();
  static NoSession none;
  return none;
}

void UrlSession::install(std::shared_ptr<UrlSession> session) {
  installedSession() = std::move(session);
}

}  // namespace vantrel
