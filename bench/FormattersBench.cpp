// Formats dates and times of plans in many zones: compares the shared formatters with a new
// formatter for each text and with QLocale with cached zones. Checks first that the texts are those
// of ICU.
#include <benchmark/benchmark.h>
#include <unicode/datefmt.h>
#include <unicode/timezone.h>

#include <QLocale>
#include <QTimeZone>
#include <array>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "time/Formatters.h"

namespace {

using namespace vantrel;

constexpr const char* kLocale = "en_GB";
constexpr std::size_t kCount = 4096;
constexpr std::array kZones = {
    "Europe/Madrid",      "Europe/Athens",       "Europe/London",     "America/New_York",
    "Asia/Tokyo",         "Asia/Kathmandu",      "Asia/Kolkata",      "Africa/Johannesburg",
    "Asia/Shanghai",      "America/Los_Angeles", "America/Sao_Paulo", "America/St_Johns",
    "Australia/Adelaide", "Pacific/Auckland",    "Pacific/Honolulu",  "Atlantic/Reykjavik",
};

struct Moment {
  Date date;
  std::size_t zone;
};

/// Instants of some years around now, in each zone in turn.
const std::vector<Moment>& moments() {
  static const auto made = [] {
    std::mt19937_64 random(20240621);
    std::uniform_int_distribution<int> second(500'000'000, 900'000'000);
    std::vector<Moment> result;
    for (std::size_t i = 0; i < kCount; ++i) {
      result.push_back({Date(second(random)), i % kZones.size()});
    }
    return result;
  }();
  return made;
}

/// Returns the text by ICU with its own zone rules.
std::string naiveText(const Moment& moment) {
  const std::unique_ptr<icu::DateFormat> formatter(icu::DateFormat::createDateTimeInstance(
      icu::DateFormat::kShort, icu::DateFormat::kShort, icu::Locale(kLocale)));
  formatter->adoptTimeZone(
      icu::TimeZone::createTimeZone(icu::UnicodeString(kZones[moment.zone], -1, US_INV)));
  icu::UnicodeString text;
  formatter->format(moment.date.timeIntervalSince1970() * U_MILLIS_PER_SECOND, text);
  std::string result;
  return text.toUTF8String(result);
}

void newFormatterEach(benchmark::State& state) {
  for (auto _ : state) {
    for (const auto& moment : moments()) benchmark::DoNotOptimize(naiveText(moment));
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(newFormatterEach)->Unit(benchmark::kMillisecond);

void sharedFormatters(benchmark::State& state) {
  auto& formatters = Formatters::sharedInstance();
  std::vector<TimeZone> zones;
  for (const char* zone : kZones) zones.push_back(*TimeZone::timeZoneWithName(zone));
  const auto text = [&](const Moment& moment) {
    formatters.setTimeZone(zones[moment.zone]);
    return formatters.shortDateTimeFormatter().stringFromDate(moment.date);
  };
  for (const auto& moment : moments()) {
    if (text(moment) != naiveText(moment)) return state.SkipWithError("other texts than ICU");
  }
  for (auto _ : state) {
    for (const auto& moment : moments()) benchmark::DoNotOptimize(text(moment));
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(sharedFormatters)->Unit(benchmark::kMillisecond);

void qLocaleWithCachedZones(benchmark::State& state) {
  const QLocale locale{QString::fromLatin1(kLocale)};
  std::vector<QTimeZone> zones;
  for (const char* zone : kZones) zones.emplace_back(QByteArray(zone));
  for (auto _ : state) {
    for (const auto& moment : moments()) {
      const auto instant = QDateTime::fromSecsSinceEpoch(
          static_cast<qint64>(moment.date.timeIntervalSince1970()), zones[moment.zone]);
      benchmark::DoNotOptimize(locale.toString(instant, QLocale::ShortFormat).toUtf8());
    }
  }
  state.SetItemsProcessed(state.iterations() * std::int64_t{kCount});
}
BENCHMARK(qLocaleWithCachedZones)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  ::setenv("LC_ALL", "en_GB.UTF-8", 1);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
