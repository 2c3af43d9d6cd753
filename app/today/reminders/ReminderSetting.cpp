#include "today/reminders/ReminderSetting.h"

#include <string_view>

#include "platform/system/UserDefaults.h"
#include "today/reminders/ReminderSchedule.h"

namespace vantrel {

namespace {

constexpr std::string_view kKey = "reminders";

std::string textOf(const std::vector<std::chrono::minutes>& leadTimes) {
  std::string text;
  for (const auto leadTime : leadTimes) {
    text += (text.empty() ? "" : ",") + std::to_string(leadTime.count()) + "m";
  }
  return text;
}

}  // namespace

std::vector<std::chrono::minutes> storedLeadTimes() {
  UserDefaults& settings = UserDefaults::standardUserDefaults();
  // Another process may have changed them. If the file cannot be read, they are off.
  (void)settings.synchronize();
  return parseLeadTimes(settings.stringForKey(kKey).value_or("off"))
      .value_or(std::vector<std::chrono::minutes>());
}

Expected<void> storeLeadTimes(const std::vector<std::chrono::minutes>& leadTimes) {
  UserDefaults& settings = UserDefaults::standardUserDefaults();
  if (leadTimes.empty()) {
    settings.removeObjectForKey(kKey);
  } else {
    settings.setObject(PropertyList::string(textOf(leadTimes)), kKey);
  }
  return settings.synchronize();
}

}  // namespace vantrel
