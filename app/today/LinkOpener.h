#pragma once

#include <functional>
#include <string>

namespace vantrel {

/// Opens links with the application that the desktop has for them.
class LinkOpener {
 public:
  enum class Result { kOpened, kNoHandler, kFailed };
  virtual ~LinkOpener() = default;
  /// `link` is opened byte for byte. Main thread.
  virtual Result open(const std::string& link);
};

}  // namespace vantrel
