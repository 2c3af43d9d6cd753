#include "webservice/WebServiceRequestOperation.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

#include "base/Ascii.h"
#include "base/Log.h"
#include "base/PercentEncoding.h"
#include "base/StringFormat.h"
#include "platform/system/MainQueue.h"
#include "platform/system/UrlSession.h"

namespace vantrel {

namespace {

/// This program's account.
constexpr const char* kUsername = "vantrel";
constexpr const char* kToken = "xwQ_2016torrelabas";

[[noreturn]] void failAbstract(const char* operation) {
  throw std::logic_error(stringWithFormat("You must override %@ in a subclass", {operation}));
}

/// Replaces `word` by "***" wherever it is a whole word.
void hide(std::string_view word, std::string& text) {
  constexpr std::string_view kHidden = "***";
  if (word.empty()) return;
  std::size_t at = 0;
  while ((at = text.find(word, at)) != std::string::npos) {
    const std::size_t end = at + word.size();
    const bool inside = (at > 0 && isAsciiWordCharacter(text[at - 1])) ||
                        (end < text.size() && isAsciiWordCharacter(text[end]));
    if (!inside) text.replace(at, word.size(), kHidden);
    at += inside ? 1 : kHidden.size();
  }
}

}  // namespace

WebServiceRequestOperation::WebServiceRequestOperation() : username_(kUsername), token_(kToken) {}

std::string WebServiceRequestOperation::withoutAccount(std::string text) const {
  for (const auto& secret : {token_, username_}) {
    hide(percentEncoded(secret, kUrlUnreservedCharacterSet), text);
    hide(secret, text);
  }
  return text;
}

void WebServiceRequestOperation::main() {
  const UrlRequest request{urlString(), kTimeout};
  UrlSession& session = UrlSession::sharedSession();
  if (const auto stored = session.cachedResponse(request)) {
    processData(*stored);
    return;
  }
  schedule([](auto& operation) { operation.downloadStarted(); });
  session.dataTask(request, [self = self()](const auto& body) { self->finishLoading(body); });
}

void WebServiceRequestOperation::finishLoading(const Expected<std::string>& body) {
  if (isCancelled()) return;
  if (body) {
    processData(*body);
    return;
  }
  const Error& error = body.error();
  scheduleError(error);
  const auto url = error.userInfo.find("url");
  logLine(withoutAccount(stringWithFormat(
      "Connection failed! Error - %@ %@",
      {error.localizedDescription, url == error.userInfo.end() ? "" : url->second})));
}

void WebServiceRequestOperation::processData(std::string_view data) {
  const auto answer = JsonAnswer::answerWithData(data);
  if (!answer) {
    scheduleError(answer.error());
  } else if (serverType_ != kGeoNames) {
    processGoogleAnswer(*answer);
  } else {
    processGeoNamesAnswer(*answer);
  }
}

void WebServiceRequestOperation::processGoogleAnswer(const JsonAnswer& answer) {
  const auto status = answer["status"].asString();
  if (status == "OK") {
    if (const auto result = answer["results"].first()) {
      schedule([result = *result](auto& operation) { operation.parseEnded(result); });
    }
    return;
  }
  const auto message = answer["error_message"].asString();
  scheduleError(std::nullopt, message ? message : status);
  logLine(withoutAccount(
      stringWithFormat("Google API Error: %@", {message ? *message : std::string("(null)")})));
}

void WebServiceRequestOperation::processGeoNamesAnswer(const JsonAnswer& answer) {
  if (answer.contains(getCheckDataKey())) {
    schedule([answer](auto& operation) { operation.parseEnded(answer); });
    return;
  }
  if (const auto status = answer["status"]; status.isObject()) {
    const auto message = status["message"].asString();
    scheduleError(
        Error{kGeoNamesErrorDomain, status["value"].intValue(), message.value_or(""), {}});
    return;
  }
  // The misspelling is part of the interface.
  scheduleError(
      Error{kGeoNamesErrorDomain, kUnknownLookupError, "Geonames unkowin lookup error", {}});
}

void WebServiceRequestOperation::schedule(
    std::function<void(WebServiceRequestOperation& operation)> notice) {
  MainQueue::sharedQueue().async([self = self(), notice = std::move(notice)] {
    if (!self->isCancelled()) notice(*self);
  });
}

void WebServiceRequestOperation::scheduleError(std::optional<Error> error,
                                               std::optional<std::string> serviceMessage) {
  schedule([error = std::move(error), message = std::move(serviceMessage)](auto& operation) {
    operation.serviceMessage_ = message;
    operation.parseError(error);
  });
}

void WebServiceRequestOperation::notifyNetworkIsActive(bool isActive) {
  if (const auto listener = delegate()) {
    listener->webServiceRequestOperationNetworkIsActive(*this, isActive);
  }
}

void WebServiceRequestOperation::downloadStarted() {
  notifyNetworkIsActive(true);
}

void WebServiceRequestOperation::parseEnded(const JsonAnswer& result) {
  notifyNetworkIsActive(false);
  // The delegate may have cancelled in the notice.
  if (!isCancelled()) processResponseWithResult(result);
}

void WebServiceRequestOperation::parseError(const std::optional<Error>& error) {
  notifyNetworkIsActive(false);
  const auto listener = delegate();
  if (listener && !isCancelled()) {
    listener->webServiceRequestOperationDidFailWithError(*this, error);
  }
}

std::string WebServiceRequestOperation::urlString() const {
  failAbstract("urlString");
}

std::string WebServiceRequestOperation::getCheckDataKey() const {
  failAbstract("getCheckDataKey");
}

void WebServiceRequestOperation::processResponseWithResult(const JsonAnswer& /*result*/) {
  failAbstract("processResponseWithResult:");
}

}  // namespace vantrel
