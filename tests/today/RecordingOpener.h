#pragma once

#include <string>
#include <vector>

#include "today/LinkOpener.h"

namespace vantrel::test {

/// Stands in for the desktop: keeps the links, and answers as it is told.
struct RecordingOpener : LinkOpener {
  Result open(const std::string& link) override {
    links.push_back(link);
    return result;
  }
  std::vector<std::string> links;
  Result result = Result::kOpened;
};

}  // namespace vantrel::test
