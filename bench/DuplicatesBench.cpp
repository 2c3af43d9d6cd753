// Compares finding duplicate plans with reading them, with comparing all pairs, and with SQLite's
// self-join. One plan in ten is a duplicate; the others differ in all values, in place only, in
// longitude only, or in the identifier only.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "objectstore/PersistentStoreCoordinator.h"
#include "store/Database.h"
#include "store/DuplicateRule.h"

namespace {

namespace fs = std::filesystem;
using namespace vantrel;

enum Kind : std::int64_t { kAllDiffer, kPlacesDiffer, kLongitudesDiffer, kOneSpot };

/// Returns the values of plan k as SQL.
const char* valuesOf(std::int64_t kind) {
  switch (kind) {
    case kAllDiffer:
      return "700000000 + k * 60.5, k % 180 - 90 + 0.25, k % 360 - 180 + 0.5, 'A plan that bears "
             "the"
             " number ' || k";
    case kPlacesDiffer:
      return "700000000, k * 7919 % 1000000 / 6000.0 - 80, k * 104729 % 1000003 / 3000.0 - 160,"
             " 'A plan that bears no number'";
    case kLongitudesDiffer:
      return "700000000, 41.39, k * 104729 % 1000003 / 3000.0 - 160, 'A plan that bears no number'";
    default:
      return "700000000, 41.39, 2.17, 'A plan that bears no number'";
  }
}

/// Stores by their kind and size; removed by the destructor.
class Stores {
 public:
  Stores() {
    std::string pattern = (fs::temp_directory_path() / "vantrel-bench-XXXXXX").string();
    directory_ = ::mkdtemp(pattern.data());
  }
  ~Stores() {
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
  }
  Stores(const Stores&) = delete;
  Stores& operator=(const Stores&) = delete;

  fs::path store(std::int64_t kind, std::int64_t count) {
    const fs::path file =
        directory_ / (std::to_string(kind) + "-" + std::to_string(count) + ".sqlite");
    if (fs::exists(file)) return file;
    PersistentStoreCoordinator coordinator(Database::sharedInstance().managedObjectModel());
    if (!coordinator.addPersistentStore(file, {})) std::abort();
    const std::string sql =
        "PRAGMA synchronous = OFF; BEGIN; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1"
        " FROM n WHERE i < " +
        std::to_string(count) +
        "), p(i, k) AS (SELECT i, iif(i % 10 = 0, i - 7, i) FROM n)"
        " INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME,"
        " ZTIMEZONE, ZUNIQUEIDENTIFIER) SELECT i, 4, 1, " +
        valuesOf(kind) +
        ", 'Europe/Madrid', printf('%08X-0000-4000-8000-000000000000', i) FROM p;"
        "INSERT INTO ZIMAGE (Z_ENT, Z_OPT, ZPLANNING) SELECT 3, 1, Z_PK FROM ZPLANNING"
        " WHERE Z_PK % 10 IN (0, 3); COMMIT; PRAGMA wal_checkpoint(TRUNCATE)";
    sqlite3* database = open(file);
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
    sqlite3_close(database);
    return file;
  }

  static sqlite3* open(const fs::path& file) {
    sqlite3* database = nullptr;
    if (sqlite3_open(file.c_str(), &database) != SQLITE_OK) std::abort();
    return database;
  }

 private:
  fs::path directory_;
};

Stores& stores() {
  static Stores all;
  return all;
}

std::shared_ptr<PersistentStoreCoordinator> openStore(const benchmark::State& state) {
  auto coordinator =
      std::make_shared<PersistentStoreCoordinator>(Database::sharedInstance().managedObjectModel());
  if (!coordinator->addPersistentStore(stores().store(state.range(0), state.range(1)), {})) {
    std::abort();
  }
  return coordinator;
}

std::size_t duplicatesIn(const benchmark::State& state) {
  const auto plans = static_cast<std::size_t>(state.range(1));
  return state.range(0) == kOneSpot ? plans - 2 : plans / 10;
}

void readPlans(benchmark::State& state) {
  const auto coordinator = openStore(state);
  for (auto _ : state) {
    ManagedObjectContext context(coordinator);
    const auto plans = context.executeFetchRequest({.entityName = "Planning"});
    if (!plans || plans->size() != static_cast<std::size_t>(state.range(1))) {
      state.SkipWithError("not all plans");
    }
  }
}

void findDuplicates(benchmark::State& state) {
  ManagedObjectContext context(openStore(state));
  const auto plans = context.executeFetchRequest({.entityName = "Planning"});
  for (auto _ : state) {
    const auto counts = context.countsOfRelatedObjects(*plans, kImagesKey);
    const auto found = duplicateIndexes(kPlanningRule, *plans, *counts);
    if (found.size() != duplicatesIn(state)) state.SkipWithError("not the duplicates");
  }
}

void compareEachWithEach(benchmark::State& state) {
  ManagedObjectContext context(openStore(state));
  const auto plans = context.executeFetchRequest({.entityName = "Planning"});
  for (auto _ : state) {
    const auto found = Database::sharedInstance().duplicateObjectsInArray(
        *plans, [](const ManagedObject& earlier, const ManagedObject& later) {
          return isDuplicate(kPlanningRule, earlier, later);
        });
    if (found.size() != duplicatesIn(state)) state.SkipWithError("not the duplicates");
  }
}

void joinInSqlite(benchmark::State& state) {
  sqlite3* database = Stores::open(stores().store(state.range(0), state.range(1)));
  constexpr const char* kJoin =
      "SELECT count(DISTINCT b.Z_PK) FROM ZPLANNING a JOIN ZPLANNING b ON a.Z_PK < b.Z_PK"
      " AND a.ZDATE = b.ZDATE AND a.ZNAME = b.ZNAME"
      " AND abs(a.ZLATITUDE - b.ZLATITUDE) < 1e-7 AND abs(a.ZLONGITUDE - b.ZLONGITUDE) < 1e-7"
      " AND (SELECT count(*) FROM ZIMAGE WHERE ZPLANNING = a.Z_PK)"
      " = (SELECT count(*) FROM ZIMAGE WHERE ZPLANNING = b.Z_PK)";
  for (auto _ : state) {
    sqlite3_stmt* row = nullptr;
    if (sqlite3_prepare_v2(database, kJoin, -1, &row, nullptr) != SQLITE_OK) std::abort();
    if (sqlite3_step(row) != SQLITE_ROW ||
        static_cast<std::size_t>(sqlite3_column_int64(row, 0)) != duplicatesIn(state)) {
      state.SkipWithError("not the duplicates");
    }
    sqlite3_finalize(row);
  }
  sqlite3_close(database);
}

constexpr std::int64_t kMany = 1'000'000;
constexpr std::int64_t kSome = 30'000;
constexpr std::int64_t kFew = 300;

void onManyPlans(benchmark::internal::Benchmark* bench) {
  for (const Kind kind : {kAllDiffer, kPlacesDiffer, kLongitudesDiffer, kOneSpot}) {
    bench->Args({kind, kMany});
  }
  bench->Unit(benchmark::kMillisecond);
}
BENCHMARK(readPlans)->Apply(onManyPlans);
BENCHMARK(findDuplicates)->Apply(onManyPlans);

void onSomePlans(benchmark::internal::Benchmark* bench) {
  for (const Kind kind : {kAllDiffer, kPlacesDiffer}) bench->Args({kind, kSome});
  bench->Unit(benchmark::kMillisecond);
}
BENCHMARK(findDuplicates)->Apply(onSomePlans);
// Up to minutes each: run once.
BENCHMARK(joinInSqlite)->Apply(onSomePlans)->Iterations(1)->Repetitions(1);
BENCHMARK(compareEachWithEach)->Apply(onSomePlans)->Iterations(1)->Repetitions(1);

// Small enough for every test run.
void onFewPlans(benchmark::internal::Benchmark* bench) {
  bench->Args({kPlacesDiffer, kFew})->Unit(benchmark::kMillisecond);
}
BENCHMARK(readPlans)->Apply(onFewPlans);
BENCHMARK(findDuplicates)->Apply(onFewPlans);
BENCHMARK(joinInSqlite)->Apply(onFewPlans);
BENCHMARK(compareEachWithEach)->Apply(onFewPlans);

}  // namespace

BENCHMARK_MAIN();
