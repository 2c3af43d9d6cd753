#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "Targets.h"

namespace vantrel::fuzz {

/// A temporary folder for the files that targets read; in memory if the system has /dev/shm, since
/// each input is written to it.
class Scratch {
 public:
  Scratch() {
    const std::filesystem::path memory = "/dev/shm";
    const bool isUsable = ::access(memory.c_str(), W_OK) == 0;
    auto name =
        ((isUsable ? memory : std::filesystem::temp_directory_path()) / "fuzz-XXXXXX").string();
    require(::mkdtemp(name.data()) != nullptr, "a scratch folder can be created");
    folder_ = name;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  /// Writes the only file of the folder and returns its path.
  std::filesystem::path fileWith(const std::string& name, Bytes content) const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_))
      std::filesystem::remove_all(entry.path());
    const auto file = folder_ / name;
    std::ofstream(file, std::ios::binary) << textOf(content);
    return file;
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace vantrel::fuzz
