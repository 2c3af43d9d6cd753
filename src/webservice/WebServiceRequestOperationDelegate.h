#pragma once

#include <optional>

#include "base/Error.h"

namespace vantrel {

class WebServiceRequestOperation;

/// Hears how a request goes. Main thread.
class WebServiceRequestOperationDelegate {
 public:
  virtual ~WebServiceRequestOperationDelegate() = default;
  /// True when a download starts, false when it has ended, well or not. An answer from the cache
  /// sends false alone; an "OK" of Google without results never sends it.
  virtual void webServiceRequestOperationNetworkIsActive(WebServiceRequestOperation& /*operation*/,
                                                         bool /*isActive*/) {}
  /// Nothing when Google refused: `WebServiceRequestOperation::serviceMessage` has its reason.
  virtual void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& /*operation*/,
                                                          const std::optional<Error>& /*error*/) {}
};

}  // namespace vantrel
