#pragma once

#include <map>
#include <string>

#include <tl/expected.hpp>

namespace vantrel {

/// `localizedDescription` is one line that a person can act on. Codes are unique within a `domain`.
struct Error {
  std::string domain;
  int code = 0;
  std::string localizedDescription;
  std::map<std::string, std::string> userInfo;
};

template <typename T>
using Expected = tl::expected<T, Error>;

}  // namespace vantrel
