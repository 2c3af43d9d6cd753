#include "today/reminders/ReminderLog.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "base/PercentEncoding.h"
#include "common/OutputFile.h"

namespace vantrel {

namespace {

constexpr std::size_t kMostRecords = 1000;
constexpr double kSecondsKept = 24 * 60 * 60;

}  // namespace

std::vector<Reminder> ReminderLog::load() const {
  std::vector<Reminder> reminders;
  std::ifstream file(file_);
  std::string line;
  while (reminders.size() < kMostRecords && std::getline(file, line)) {
    std::istringstream fields(line);
    double seconds = 0;
    std::chrono::minutes::rep lead = 0;
    std::string name;
    if (!(fields >> seconds >> lead >> name)) continue;
    if (auto identifier = percentDecoded(name))
      reminders.push_back({std::move(*identifier), Date(seconds), std::chrono::minutes(lead)});
  }
  return reminders;
}

Expected<bool> ReminderLog::claim(const Reminder& reminder, Date now) const {
  // A separate lock file: the log is replaced on writing, and a lock on it would stay with the old
  // file.
  const auto lockPath = file_.string() + ".lock";
  const FileDescriptor lock(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock || ::flock(lock.number(), LOCK_EX) != 0) {
    const int error = errno;
    return tl::unexpected(Error{"POSIX", error, lockPath + ": " + std::strerror(error), {}});
  }
  auto reminders = load();
  if (std::ranges::find(reminders, reminder) != reminders.end()) return false;
  std::erase_if(reminders, [now](const Reminder& old) {
    return now.timeIntervalSinceDate(old.date) > kSecondsKept;
  });
  if (reminders.size() >= kMostRecords) reminders.erase(reminders.begin());
  reminders.push_back(reminder);

  std::ostringstream text;
  text.precision(17);
  for (const Reminder& each : reminders) {
    text << each.date.timeIntervalSinceReferenceDate() << ' ' << each.leadTime.count() << ' '
         << percentEncoded(each.identifier, kUrlUnreservedCharacterSet) << '\n';
  }
  OutputFile file(file_);
  if (auto opened = file.open(); !opened) return tl::unexpected(opened.error());
  file.write(text.str());
  if (auto finished = file.finish(); !finished) return tl::unexpected(finished.error());
  return true;
}

}  // namespace vantrel
