// A minimal program that prints the next plans, for comparison with `vantrel today`.
#include <sqlite3.h>
#include <unicode/datefmt.h>
#include <unicode/timezone.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

namespace {

constexpr double kReferenceDateSince1970 = 978307200;

std::time_t startOfToday() {
  std::tm day{};
  if (const char* now = std::getenv("VANTREL_NOW")) {
    strptime(now, "%Y-%m-%d", &day);
  } else {
    const std::time_t seconds = std::time(nullptr);
    localtime_r(&seconds, &day);
    day.tm_hour = day.tm_min = day.tm_sec = 0;
  }
  day.tm_isdst = -1;
  return std::mktime(&day);
}

std::string text(sqlite3_stmt* row, int column) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  return bytes ? bytes : "";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 64;
  sqlite3* store = nullptr;
  sqlite3_stmt* query = nullptr;
  if (sqlite3_open_v2(argv[1], &store, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(store,
                         "SELECT ZNAME, ZDATE, ZTIMEZONE FROM ZPLANNING WHERE ZDATE >= ? "
                         "ORDER BY ZDATE, Z_PK LIMIT 5",
                         -1, &query, nullptr) != SQLITE_OK) {
    std::fprintf(stderr, "%s\n", sqlite3_errmsg(store));
    return 1;
  }
  sqlite3_bind_double(query, 1, static_cast<double>(startOfToday()) - kReferenceDateSince1970);
  const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
      icu::DateFormat::kShort, icu::DateFormat::kShort, icu::Locale::getDefault()));
  while (sqlite3_step(query) == SQLITE_ROW) {
    format->adoptTimeZone(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(text(query, 2))));
    icu::UnicodeString formatted;
    format->format((sqlite3_column_double(query, 1) + kReferenceDateSince1970) * 1000, formatted);
    std::string date;
    std::printf("%s\n  %s\n", text(query, 0).c_str(), formatted.toUTF8String(date).c_str());
  }
  sqlite3_finalize(query);
  return sqlite3_close(store);
}
