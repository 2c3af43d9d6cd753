// Compiles the source of a model into the folder that programs load: modelc NAME.model DIRECTORY
// creates DIRECTORY/NAME.momd.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "CompiledModel.h"
#include "ModelSource.h"

namespace {

namespace fs = std::filesystem;
using vantrel::Data;

bool write(const fs::path& path, const Data& data) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  file.close();
  if (!file) std::fprintf(stderr, "modelc: cannot write %s\n", path.c_str());
  return static_cast<bool>(file);
}

bool compile(const fs::path& input, const fs::path& directory) {
  const auto text = vantrel::dataWithContentsOfURL(input);
  if (!text) {
    std::fprintf(stderr, "modelc: %s\n", text.error().localizedDescription.c_str());
    return false;
  }
  const auto source =
      vantrel::modelSourceWithText({reinterpret_cast<const char*>(text->data()), text->size()});
  if (!source) {
    std::fprintf(stderr, "%s:%s\n", input.c_str(), source.error().localizedDescription.c_str());
    return false;
  }
  const auto momd = directory / (source->name + ".momd");
  std::error_code ignored;
  fs::create_directories(momd, ignored);
  for (const auto& version : source->versions) {
    const auto file = momd / (versionName(*source, version) + ".mom");
    if (!write(file, archivedModel(version))) return false;
  }
  return write(momd / "VersionInfo.plist", versionInfo(*source).binaryData());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: modelc NAME.model DIRECTORY\n");
    return 64;
  }
  return compile(argv[1], argv[2]) ? 0 : 1;
}
