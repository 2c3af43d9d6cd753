// Compares fetching plans through a context with SQLite alone, which reads the same rows into plain
// structures. Run one benchmark at a time to compare their memory ("peakMiB").
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "objectstore/ManagedObjectContext.h"
#include "platform/system/Bundle.h"
#include "store/Planning.h"

namespace {

namespace fs = std::filesystem;
using namespace vantrel;

constexpr std::int64_t kPlans = 1'000'000;
constexpr double kFirstDate = 700'000'000;

std::shared_ptr<PersistentStoreCoordinator> openStore(const fs::path& path) {
  auto model = std::make_shared<ManagedObjectModel>(*ManagedObjectModel::modelWithContentsOfURL(
      *Bundle::mainBundle().urlForResource("Vantrel", "momd")));
  model->entityNamed("Planning")->makeObject = [] { return std::make_shared<Planning>(); };
  auto coordinator = std::make_shared<PersistentStoreCoordinator>(model);
  if (!coordinator->addPersistentStore(path, {})) std::abort();
  return coordinator;
}

sqlite3* openPlain(const fs::path& path) {
  sqlite3* database = nullptr;
  if (sqlite3_open(path.c_str(), &database) != SQLITE_OK) std::abort();
  return database;
}

/// A store with a million plans, one in four with pictures; removed by the destructor.
const fs::path& storeFile() {
  static const struct Store {
    Store() {
      std::string pattern = (fs::temp_directory_path() / "vantrel-bench-XXXXXX").string();
      directory = ::mkdtemp(pattern.data());
      file = directory / "Vantrel.sqlite";
      openStore(file);
      sqlite3* database = openPlain(file);
      const std::string count = std::to_string(kPlans);
      const std::string sql =
          "BEGIN;"
          "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
          count +
          ")"
          " INSERT INTO ZPLANNING SELECT i, 4, 1, 700000000 + (i * 7919 % " +
          count +
          ") * 60.5,"
          " i % 180 - 90 + 0.25, i % 360 - 180 + 0.5, 'A plan that bears the number ' || i,"
          " NULL, 'Europe/Madrid', printf('%08X-0000-4000-8000-000000000000', i) FROM n;"
          "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZPLANNING) SELECT 3, 1, Z_PK FROM ZPLANNING"
          " WHERE Z_PK % 4 = 0;"
          "COMMIT; PRAGMA wal_checkpoint(TRUNCATE)";
      if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
      sqlite3_close(database);
    }
    ~Store() {
      std::error_code ignored;
      fs::remove_all(directory, ignored);
    }
    fs::path directory;
    fs::path file;
  } store;
  return store.file;
}

void notePeak(benchmark::State& state) {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peakMiB"] = static_cast<double>(usage.ru_maxrss) / 1024;
}

struct PlainPlan {
  std::int64_t key = 0;
  std::int64_t version = 0;
  double date = 0;
  double latitude = 0;
  double longitude = 0;
  std::string name;
  std::optional<std::string> notes;
  std::string timezone;
  std::string uniqueIdentifier;
};

std::string text(sqlite3_stmt* row, int column) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return bytes ? bytes : std::string();
}

std::vector<PlainPlan> readPlain(sqlite3* database, const char* sql) {
  sqlite3_stmt* row = nullptr;
  if (sqlite3_prepare_v2(database, sql, -1, &row, nullptr) != SQLITE_OK) std::abort();
  std::vector<PlainPlan> plans;
  while (sqlite3_step(row) == SQLITE_ROW) {
    PlainPlan& plan = plans.emplace_back();
    plan.key = sqlite3_column_int64(row, 0);
    plan.version = sqlite3_column_int64(row, 1);
    plan.date = sqlite3_column_double(row, 2);
    plan.latitude = sqlite3_column_double(row, 3);
    plan.longitude = sqlite3_column_double(row, 4);
    plan.name = text(row, 5);
    if (sqlite3_column_type(row, 6) != SQLITE_NULL) plan.notes = text(row, 6);
    plan.timezone = text(row, 7);
    plan.uniqueIdentifier = text(row, 8);
  }
  sqlite3_finalize(row);
  return plans;
}

constexpr const char* kAll =
    "SELECT Z_PK, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME, ZNOTES, ZTIMEZONE, ZUNIQUEIDENTIFIER"
    " FROM ZPLANNING ORDER BY Z_PK";
constexpr const char* kNext =
    "SELECT Z_PK, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME, ZNOTES, ZTIMEZONE, ZUNIQUEIDENTIFIER"
    " FROM ZPLANNING WHERE ZDATE >= 720000000 ORDER BY ZDATE, Z_PK LIMIT 5";

void allPlansPlain(benchmark::State& state) {
  sqlite3* database = openPlain(storeFile());
  for (auto _ : state) benchmark::DoNotOptimize(readPlain(database, kAll));
  sqlite3_close(database);
  notePeak(state);
}
BENCHMARK(allPlansPlain)->Unit(benchmark::kMillisecond);

void allPlans(benchmark::State& state) {
  const auto coordinator = openStore(storeFile());
  for (auto _ : state) {
    ManagedObjectContext context(coordinator);
    const auto plans = context.executeFetchRequest({.entityName = "Planning"});
    if (!plans || plans->size() != kPlans) state.SkipWithError("not all plans");
  }
  notePeak(state);
}
BENCHMARK(allPlans)->Unit(benchmark::kMillisecond);

void nextPlansPlain(benchmark::State& state) {
  sqlite3* database = openPlain(storeFile());
  for (auto _ : state) benchmark::DoNotOptimize(readPlain(database, kNext));
  sqlite3_close(database);
}
BENCHMARK(nextPlansPlain);

void nextPlans(benchmark::State& state) {
  const auto coordinator = openStore(storeFile());
  for (auto _ : state) {
    ManagedObjectContext context(coordinator);
    const auto plans = context.executeFetchRequest(
        {.entityName = "Planning",
         .predicate = Predicate::greaterThanOrEqual("date", Date(kFirstDate + 20'000'000)),
         .sortDescriptors = {{"date", true}},
         .fetchLimit = 5});
    if (!plans || plans->size() != 5) state.SkipWithError("not five plans");
  }
}
BENCHMARK(nextPlans);

void imageCounts(benchmark::State& state) {
  ManagedObjectContext context(openStore(storeFile()));
  const auto plans = context.executeFetchRequest({.entityName = "Planning"});
  for (auto _ : state) {
    const auto counts = context.countsOfRelatedObjects(*plans, "images");
    if (!counts || (*counts)[3] != 1) state.SkipWithError("no counts");
  }
}
BENCHMARK(imageCounts)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
