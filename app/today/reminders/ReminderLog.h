#pragma once

#include <filesystem>
#include <vector>

#include "base/Error.h"
#include "today/reminders/ReminderSchedule.h"

namespace vantrel {

/// The reminders that were shown, in a file that the processes of a user share, so that neither a
/// second window nor a restart repeats one. Not thread-safe; safe among processes.
class ReminderLog {
 public:
  /// The folder of `file` must exist.
  explicit ReminderLog(std::filesystem::path file) : file_(std::move(file)) {}

  /// Returns the valid lines of the file; empty if it cannot be read.
  std::vector<Reminder> load() const;
  /// Records `reminder` before it is shown. Returns false if it is recorded already: another
  /// process shows it. Drops plans that began more than a day before `now`, and the oldest records
  /// beyond 1000. Errors: the file cannot be locked or written.
  Expected<bool> claim(const Reminder& reminder, Date now) const;

 private:
  std::filesystem::path file_;
};

}  // namespace vantrel
