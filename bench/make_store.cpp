// Creates a store with COUNT plans, an hour apart, half of them in the past, in 24 zones in turn.
// Usage: make_store FILE COUNT
#include <sqlite3.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/Clock.h"
#include "base/Uuid.h"
#include "objectstore/PersistentStoreCoordinator.h"
#include "store/Database.h"

namespace {

constexpr double kHour = 3600;
constexpr std::array kZones = {
    "Europe/Madrid",       "Asia/Tokyo",     "America/New_York", "Africa/Cairo",
    "Australia/Sydney",    "Asia/Kolkata",   "Europe/London",    "America/Sao_Paulo",
    "America/Los_Angeles", "Asia/Dubai",     "Pacific/Auckland", "Europe/Helsinki",
    "Africa/Nairobi",      "America/Denver", "Asia/Singapore",   "Europe/Paris",
    "America/Bogota",      "Asia/Kathmandu", "Pacific/Honolulu", "America/St_Johns",
    "Africa/Lagos",        "Asia/Seoul",     "Europe/Lisbon",    "Atlantic/Reykjavik"};

int fail(const std::string& why) {
  std::fprintf(stderr, "make_store: %s\n", why.c_str());
  return 1;
}

/// Inserts rows with SQLite: the object store would keep a million objects in memory.
bool insertPlans(sqlite3* file, long count) {
  constexpr const char* kInsert =
      "INSERT INTO ZPLANNING (Z_PK, Z_ENT, Z_OPT, ZDATE, ZLATITUDE, ZLONGITUDE, ZNAME, ZTIMEZONE, "
      "ZUNIQUEIDENTIFIER) SELECT ?1, Z_ENT, 1, ?2, 41.39, 2.17, ?3, ?5, ?4 "
      "FROM Z_PRIMARYKEY WHERE Z_NAME = 'Planning'";
  sqlite3_stmt* insert = nullptr;
  const long before = count / 2;
  if (sqlite3_exec(file, "PRAGMA synchronous = OFF; BEGIN", nullptr, nullptr, nullptr) !=
          SQLITE_OK ||
      sqlite3_prepare_v2(file, kInsert, -1, &insert, nullptr) != SQLITE_OK) {
    return false;
  }
  const double now =
      std::floor(vantrel::Clock::sharedClock().now().timeIntervalSinceReferenceDate() / kHour);
  bool ok = true;
  for (long key = 1; ok && key <= count; ++key) {
    const std::string name = "Plan " + std::to_string(key);
    const std::string identifier = vantrel::uuidString();
    sqlite3_bind_int64(insert, 1, key);
    sqlite3_bind_double(insert, 2, (now + static_cast<double>(key - before)) * kHour);
    sqlite3_bind_text(insert, 3, name.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 4, identifier.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_text(insert, 5, kZones.at(static_cast<std::size_t>(key) % kZones.size()), -1,
                      SQLITE_STATIC);
    ok = sqlite3_step(insert) == SQLITE_DONE && sqlite3_reset(insert) == SQLITE_OK;
  }
  sqlite3_finalize(insert);
  const std::string last = "UPDATE Z_PRIMARYKEY SET Z_MAX = " + std::to_string(count) +
                           " WHERE Z_NAME = 'Planning'; COMMIT";
  return ok && sqlite3_exec(file, last.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return fail("usage: make_store FILE COUNT");
  const std::filesystem::path path = argv[1];
  if (std::filesystem::exists(path)) return fail(path.string() + " already exists");
  {
    vantrel::PersistentStoreCoordinator coordinator(
        vantrel::Database::sharedInstance().managedObjectModel());
    if (const auto made = coordinator.addPersistentStore(path, {}); !made) {
      return fail(made.error().localizedDescription);
    }
  }
  sqlite3* file = nullptr;
  const bool done =
      sqlite3_open(path.c_str(), &file) == SQLITE_OK && insertPlans(file, std::atol(argv[2]));
  const std::string why = done ? "" : sqlite3_errmsg(file);
  sqlite3_close(file);
  return done ? 0 : fail(why);
}
