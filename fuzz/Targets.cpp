#include "Targets.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "geo/VTObserver.h"
#include "objectstore/model/ManagedObjectModel.h"
#include "platform/archive/KeyedUnarchiver.h"
#include "platform/archive/PropertyList.h"
#include "platform/system/StringTable.h"
#include "platform/text/ZoneRules.h"

namespace vantrel::fuzz {

namespace {

/// Limits the depth of a walk, since references may form cycles.
constexpr int kMostSteps = 64;

void walk(const KeyedUnarchiver::Node& node, int steps) {
  if (!node || steps == 0) return;
  node.className();
  node.string();
  node.date();
  node.data();
  node.uuid();
  const auto items = node.array();
  if (!items.empty()) walk(items.front(), steps - 1);
  const auto entries = node.dictionary();
  if (!entries.empty()) walk(entries.back().second, steps - 1);
  walk(node.decodeObjectForKey("NSEntities"), steps - 1);
}

}  // namespace

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "requirement failed: %s\n", what);
  std::abort();
}

void propertyList(Bytes input) {
  const auto list = PropertyList::propertyListWithData(input);
  if (!list) return;
  const Data written = list->binaryData();
  const auto again = PropertyList::propertyListWithData(written);
  require(again.has_value(), "a written property list can be read");
  require(again->binaryData() == written, "a written property list is read unchanged");
}

void observerArchive(Bytes input) {
  const auto observer = VTObserver::unarchivedObserver(input);
  if (!observer) return;
  observer->pinSubtitle();
  observer->heightAboveHorizonString();
  const Data written = observer->archivedData();
  const auto again = VTObserver::unarchivedObserver(written);
  require(again.has_value(), "a written observer can be read");
  require(again->archivedData() == written, "an observer is read unchanged");
}

void modelArchive(Bytes input) {
  if (const auto archive = KeyedUnarchiver::unarchiverWithData(input))
    walk(archive->root(), kMostSteps);
  const auto model = ManagedObjectModel::modelWithData(input);
  if (model) model->versionHashes();
}

void stringTable(Bytes input) {
  stringTableWithData(input);
}

/// The input is a zone file, otherwise the text of a POSIX rule.
void zoneFile(Bytes input) {
  auto rules = ZoneRules::decoded(std::string(textOf(input)));
  if (!rules) {
    if (const auto rule = PosixZoneRule::parsed(textOf(input))) rules = ZoneRules(*rule);
  }
  if (!rules) return;
  constexpr std::int64_t kDay = 86400;
  for (const std::int64_t start : {-100'000'000'000'000L, -3'000'000'000L, 0L, 1'700'000'000L,
                                   5'000'000'000L, 100'000'000'000'000L}) {
    auto instant = start;
    for (int i = 0; i < kMostSteps; ++i) {
      const auto period = rules->periodAt(instant);
      require(period.begin <= instant && instant < period.end, "a period contains the instant");
      require(std::abs(period.offset) < 26 * 3600, "an offset is less than 26 hours");
      const auto wallTime = instant + period.offset;
      require(std::abs(rules->instantOfWallTime(wallTime) - wallTime) < 26 * 3600,
              "a wall time is near its instant");
      const auto next = rules->nextChangeAfter(instant);
      if (!next || *next > start + 10'000 * kDay) break;
      require(*next > instant, "the next change is later");
      require(rules->periodAt(*next).begin == *next, "a change begins a period");
      instant = *next;
    }
  }
}

}  // namespace vantrel::fuzz
