#include "platform/system/UrlSession.h"

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

}  // namespace

UrlSession& UrlSession::sharedSession() {
  if (installed_) return *installed_;
  static NoSession none;
  return none;
}

}  // namespace vantrel
