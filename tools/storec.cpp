// Creates the store of sensor formats that is installed with the program:
// storec MODEL.momd SENSORS.tsv STORE.sqlite.
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "objectstore/ManagedObjectContext.h"
#include "objectstore/PersistentStoreCoordinator.h"

namespace {

namespace fs = std::filesystem;
using namespace vantrel;

tl::unexpected<Error> failure(const std::string& what) {
  return tl::unexpected(Error{"storec", 1, what, {}});
}

std::optional<double> millimetres(const std::string& text) {
  double value = 0;
  const auto* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || !(value > 0)) return std::nullopt;
  return value;
}

/// Inserts a line of the table: name, width, height, unique identifier. False if it is invalid.
bool insertFormat(const std::string& line, ManagedObjectContext& context) {
  std::istringstream fields(line);
  std::string name;
  std::string width;
  std::string height;
  std::string identifier;
  std::getline(fields, name, '\t');
  std::getline(fields, width, '\t');
  std::getline(fields, height, '\t');
  std::getline(fields, identifier);
  const auto w = millimetres(width);
  const auto h = millimetres(height);
  if (name.empty() || identifier.empty() || !w || !h) return false;
  const auto format = context.insertNewObject("SensorFormat");
  return format && format->setValueForKey(name, "name") && format->setValueForKey(*w, "width") &&
         format->setValueForKey(*h, "height") &&
         format->setValueForKey(identifier, "uniqueIdentifier");
}

Expected<void> fill(const fs::path& modelUrl, const fs::path& table, const fs::path& storeUrl) {
  auto model = ManagedObjectModel::modelWithContentsOfURL(modelUrl);
  if (!model) return tl::unexpected(model.error());
  const auto coordinator = std::make_shared<PersistentStoreCoordinator>(
      std::make_shared<ManagedObjectModel>(std::move(*model)));
  // No WAL: readers cannot create its index in the installed folder.
  StoreOptions options;
  options.sqlitePragmas["journal_mode"] = "DELETE";
  if (const auto store = coordinator->addPersistentStore(storeUrl, options); !store) {
    return tl::unexpected(store.error());
  }
  ManagedObjectContext context(coordinator);
  std::ifstream lines(table);
  if (!lines) return failure("cannot read " + table.string());
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    if (line.empty() || line.front() == '#') continue;
    if (!insertFormat(line, context)) {
      return failure(table.string() + ":" + std::to_string(number) +
                     ": expected a name, a width, a height and an identifier");
    }
  }
  return context.save();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: storec MODEL.momd SENSORS.tsv STORE.sqlite\n");
    return 64;
  }
  const fs::path store = argv[3];
  // A failed build must not leave an incomplete store.
  const fs::path unfinished = store.string() + ".new";
  std::error_code error;
  fs::remove(unfinished, error);
  const auto filled = fill(argv[1], argv[2], unfinished);
  if (!filled) {
    fs::remove(unfinished, error);
    std::fprintf(stderr, "storec: %s\n", filled.error().localizedDescription.c_str());
    return 1;
  }
  fs::rename(unfinished, store, error);
  if (error) std::fprintf(stderr, "storec: %s: %s\n", argv[3], error.message().c_str());
  return error ? 1 : 0;
}
