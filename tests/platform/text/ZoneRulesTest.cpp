#include "platform/text/ZoneRules.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "support/Guards.h"

namespace vantrel {
namespace {

using test::bigEndian;

std::uint64_t bits(std::int64_t value) {
  return static_cast<std::uint64_t>(value);
}

/// A zone file by RFC 8536; version 1 has one block only.
struct File {
  char version = '2';
  std::vector<std::pair<std::int64_t, int>> changes = {{1000, 1}, {5000, 0}};
  std::vector<std::pair<int, int>> types = {{3600, 0}, {7200, 1}};  ///< Offset, daylight.
  std::string abbreviations{"AAA\0BBB\0", 8};
  int typeSize = 4;  ///< Characters of an abbreviation, with its end.
  std::string leapSeconds;
  std::string footer = "\nAAA-1\n";

  std::string block(int size) const {
    std::string bytes = std::string("TZif") + version + std::string(15, '\0');
    const auto leapCount = leapSeconds.size() / static_cast<std::size_t>(size + 4);
    for (const std::size_t count : {std::size_t{0}, std::size_t{0}, leapCount, changes.size(),
                                    types.size(), abbreviations.size()}) {
      bytes += bigEndian(count, 4);
    }
    for (const auto& change : changes) bytes += bigEndian(bits(change.first), size);
    for (const auto& change : changes) bytes += static_cast<char>(change.second);
    for (std::size_t i = 0; i < types.size(); ++i) {
      bytes += bigEndian(bits(types[i].first), 4) + static_cast<char>(types[i].second) +
               static_cast<char>(static_cast<int>(i) * typeSize);
    }
    return bytes + abbreviations + leapSeconds;
  }
  std::string bytes() const { return version == '\0' ? block(4) : block(4) + block(8) + footer; }
};

TEST(ZoneRules, ReadsEachVersion) {
  for (const char version : {'\0', '2', '3', '4'}) {
    File file;
    file.version = version;
    const auto rules = ZoneRules::decoded(file.bytes());
    ASSERT_TRUE(rules) << version;
    for (const auto& [instant, offset] :
         {std::pair(999, 3600), {1000, 7200}, {4999, 7200}, {5000, 3600}, {9999, 3600}}) {
      const auto period = rules->periodAt(instant);
      EXPECT_EQ(period.offset, offset) << instant;
      EXPECT_EQ(period.isDaylight, offset == 7200) << instant;
      EXPECT_EQ(period.abbreviation, offset == 7200 ? "BBB" : "AAA") << instant;
    }
    EXPECT_EQ(rules->nextChangeAfter(0), 1000);
    EXPECT_EQ(rules->nextChangeAfter(1000), 5000);
    EXPECT_EQ(rules->nextChangeAfter(5000), std::nullopt);
    const std::pair<int, int> wallTimes[] = {
        {999 + 3600, 999},          {1000 + 3600, 1000},                              // Skipped.
        {999 + 7200, 999 + 3600},   {1000 + 7200, 1000}, {4999 + 3600, 4999 - 3600},  // Repeated.
        {5000 + 3600, 5000 - 3600}, {4999 + 7200, 4999}, {5000 + 7200, 5000 + 3600},
    };
    for (const auto& [wallTime, instant] : wallTimes) {
      EXPECT_EQ(rules->instantOfWallTime(wallTime), instant) << wallTime;
    }
  }
}

TEST(ZoneRules, KeepsTheLastChangeUntilTheRulesNextOne) {
  File file;
  file.changes = {{1000, 1}};
  file.footer = "\nAAA-1BBB,J59/0,J300/0\n";
  const auto rules = ZoneRules::decoded(file.bytes());
  ASSERT_TRUE(rules);
  // Daylight saving time since 1 January, though the rule begins it on 28 February.
  constexpr std::int64_t kEnd = 299 * 86400 - 7200;
  EXPECT_EQ(rules->periodAt(86400).offset, 7200);
  EXPECT_EQ(rules->nextChangeAfter(1000), kEnd);
  EXPECT_EQ(rules->periodAt(kEnd).offset, 3600);
}

TEST(ZoneRules, RejectsDamagedFiles) {
  const auto madrid = test::readFile("/usr/share/zoneinfo/Europe/Madrid");
  ASSERT_TRUE(ZoneRules::decoded(madrid));
  for (std::size_t size = 0; size < madrid.size(); ++size) {
    EXPECT_FALSE(ZoneRules::decoded(madrid.substr(0, size))) << size;
  }
  const std::pair<const char*, std::function<void(File&)>> damages[] = {
      {"no type", [](File& f) { f.types.clear(), f.changes.clear(); }},
      {"a type that is not there", [](File& f) { f.changes[0].second = 2; }},
      {"changes out of order", [](File& f) { f.changes[1].first = 999; }},
      {"two changes at once", [](File& f) { f.changes[1].first = 1000; }},
      {"an offset beyond a day", [](File& f) { f.types[0].first = 26 * 3600; }},
      {"an offset before a day", [](File& f) { f.types[0].first = -0x80000000LL; }},
      {"neither daylight nor standard", [](File& f) { f.types[0].second = 2; }},
      {"no abbreviations", [](File& f) { f.abbreviations.clear(); }},
      {"an abbreviation that is not there", [](File& f) { f.typeSize = 8; }},
      {"an abbreviation without end", [](File& f) { f.abbreviations[7] = 'B'; }},
      {"leap seconds", [](File& f) { f.leapSeconds = bigEndian(78796800, 8) + bigEndian(1, 4); }},
      {"no footer", [](File& f) { f.footer = ""; }},
      {"half a footer", [](File& f) { f.footer = "\nAAA-1"; }},
      {"a footer that is no rule", [](File& f) { f.footer = "\nAAA\n"; }},
  };
  for (const auto& [name, damage] : damages) {
    File file;
    damage(file);
    EXPECT_FALSE(ZoneRules::decoded(file.bytes())) << name;
  }
  File vast;
  auto bytes = vast.bytes();
  bytes.replace(32, 4, "\xff\xff\xff\xff");
  EXPECT_FALSE(ZoneRules::decoded(bytes));
}

}  // namespace
}  // namespace vantrel
