#include <fstream>

#include "Scratch.h"
#include "Targets.h"
#include "platform/system/UserDefaults.h"

namespace vantrel::fuzz {

void settings(Bytes input) {
  static const Scratch scratch;
  const auto file = scratch.fileWith("settings.plist", input);
  bool wasReadable = false;
  std::size_t count = 0;
  {
    UserDefaults before(file);
    wasReadable = before.checkReadable().has_value();
    const auto all = before.dictionaryRepresentation();
    count = all.count();
    for (const auto& [key, value] : all.entries()) {
      before.boolForKey(key);
      before.integerForKey(key);
      before.doubleForKey(key);
      before.floatForKey(key);
      before.stringForKey(key);
      before.dataForKey(key);
    }
    require(wasReadable || count == 0, "a corrupt file has no settings");
    const bool isNew = !all["fuzz_key"];
    before.setInteger(-7, "fuzz_key");
    require(before.synchronize().has_value(), "a setting can be written over any file");
    if (isNew) ++count;
  }
  const UserDefaults after(file);
  require(after.integerForKey("fuzz_key") == -7, "a written setting is read");
  require(after.dictionaryRepresentation().count() == count, "no other setting is lost");
}

}  // namespace vantrel::fuzz
