#pragma once

#include <cstddef>
#include <span>
#include <string_view>

/// Fuzz targets: functions that accept any input, and abort the process by `require` if a result is
/// wrong. Each fuzzer program runs one target; `fuzz_replay` runs any target over files.
namespace vantrel::fuzz {

using Bytes = std::span<const std::byte>;

/// Aborts with a message unless `holds`.
void require(bool holds, const char* what);

inline std::string_view textOf(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void calendar(Bytes input);
void commandLine(Bytes input);
void link(Bytes input);
void modelArchive(Bytes input);
void observerArchive(Bytes input);
void planList(Bytes input);
void propertyList(Bytes input);
void settings(Bytes input);
void storeContent(Bytes input);
void storeFile(Bytes input);
void stringTable(Bytes input);
void webAnswer(Bytes input);
void zoneFile(Bytes input);

}  // namespace vantrel::fuzz
