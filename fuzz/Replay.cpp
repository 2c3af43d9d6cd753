// Runs one target over every file below the given folders: fuzz_replay TARGET FOLDER...

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "Targets.h"

namespace fs = std::filesystem;
using namespace vantrel;

namespace {

const std::map<std::string, void (*)(fuzz::Bytes)> kTargets = {
    {"calendar", fuzz::calendar},
    {"commandLine", fuzz::commandLine},
    {"link", fuzz::link},
    {"modelArchive", fuzz::modelArchive},
    {"observerArchive", fuzz::observerArchive},
    {"planList", fuzz::planList},
    {"propertyList", fuzz::propertyList},
    {"settings", fuzz::settings},
    {"storeContent", fuzz::storeContent},
    {"storeFile", fuzz::storeFile},
    {"stringTable", fuzz::stringTable},
    {"webAnswer", fuzz::webAnswer},
    {"zoneFile", fuzz::zoneFile},
};

std::vector<fs::path> filesBelow(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  const auto target = argc > 2 ? kTargets.find(argv[1]) : kTargets.end();
  if (target == kTargets.end()) {
    std::fprintf(stderr, "usage: fuzz_replay TARGET FOLDER...\n");
    return 64;
  }
  std::size_t count = 0;
  for (int i = 2; i < argc; ++i) {
    for (const auto& file : filesBelow(argv[i])) {
      std::ifstream stream(file, std::ios::binary);
      const std::string content((std::istreambuf_iterator<char>(stream)), {});
      std::printf("%s\n", file.c_str());
      std::fflush(stdout);
      target->second(std::as_bytes(std::span(content)));
      ++count;
    }
  }
  std::printf("%zu inputs\n", count);
  return count == 0 ? 66 : 0;
}
