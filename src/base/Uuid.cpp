#include "base/Uuid.h"

#include <uuid/uuid.h>

#include <array>

namespace vantrel {

std::string uuidString() {
  uuid_t bytes;
  uuid_generate_random(bytes);
  std::array<char, UUID_STR_LEN> text{};
  uuid_unparse_upper(bytes, text.data());
  return text.data();
}

}  // namespace vantrel
