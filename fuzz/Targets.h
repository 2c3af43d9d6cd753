#pragma once

#include <cstddef>
#include <span>
#include <string_view>

/// What hostile input may reach, one function for each way in. A target returns for whatever it is
/// given; a broken promise ends the process by `promise`. The fuzzer drives one target for a
/// program, the replay drives any over the files of its corpus.
namespace vantrel::fuzz {

using Bytes = std::span<const std::byte>;

/// Ends the process when `holds` is false, saying what was promised.
void promise(bool holds, const char* what);

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
