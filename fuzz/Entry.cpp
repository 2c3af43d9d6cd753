// The entry point of libFuzzer, for the target VANTREL_FUZZ_TARGET.

#include <cstdint>

#include "Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vantrel::fuzz::VANTREL_FUZZ_TARGET(std::as_bytes(std::span(data, size)));
  return 0;
}
