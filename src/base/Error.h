#pragma once

#include <map>
#include <string>

#include <tl/expected.hpp>

namespace vantrel {

/// What went wrong, in one line a person can act on. Values of `code` belong to `domain`.
struct Error {
  std::string domain;
  int code = 0;
  std::string localizedDescription;
  std::map<std::string, std::string> userInfo;
};

template <typename T>
using Expected = tl::expected<T, Error>;

}  // namespace vantrel
