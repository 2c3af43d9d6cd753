#include "today/reminders/ReminderMenu.h"

#include <algorithm>
#include <chrono>

#include "platform/text/RelativeDateFormatter.h"
#include "today/InterfaceText.h"
#include "today/reminders/ReminderSetting.h"

namespace vantrel {

ReminderMenu::ReminderMenu(QWidget* parent)
    : QMenu(QString::fromStdString(localized("today_reminders")), parent) {
  using std::chrono::minutes;
  using Unit = RelativeDateFormatter::Unit;
  const struct {
    int count;
    Unit unit;
    minutes leadTime;
  } choices[] = {{15, Unit::kMinute, minutes(15)},
                 {30, Unit::kMinute, minutes(30)},
                 {2, Unit::kHour, minutes(120)},
                 {1, Unit::kDay, minutes(1440)}};
  const RelativeDateFormatter words(Locale::currentLocale());
  const auto store = [this](const std::vector<minutes>& leadTimes) {
    const auto stored = storeLeadTimes(leadTimes);
    if (!stored) emit failed(stored.error().localizedDescription);
    emit changed();
  };
  auto* off = addAction(QString::fromStdString(localized("today_reminders_off")));
  off->setCheckable(true);
  connect(off, &QAction::triggered, this, [store] { store({}); });
  addSeparator();
  for (const auto& choice : choices) {
    auto* action = addAction(QString::fromStdString(words.span(choice.count, choice.unit)));
    action->setCheckable(true);
    action->setData(static_cast<int>(choice.leadTime.count()));
    connect(action, &QAction::triggered, this, [store, leadTime = choice.leadTime](bool on) {
      auto leadTimes = storedLeadTimes();
      std::erase(leadTimes, leadTime);
      if (on)
        leadTimes.insert(std::lower_bound(leadTimes.begin(), leadTimes.end(), leadTime), leadTime);
      store(leadTimes);
    });
  }
  connect(this, &QMenu::aboutToShow, this, &ReminderMenu::showSetting);
}

void ReminderMenu::showSetting() {
  const auto leadTimes = storedLeadTimes();
  for (auto* action : actions()) {
    if (!action->isCheckable()) continue;
    const int count = action->data().toInt();
    action->setChecked(count == 0 ? leadTimes.empty()
                                  : std::find(leadTimes.begin(), leadTimes.end(),
                                              std::chrono::minutes(count)) != leadTimes.end());
  }
}

}  // namespace vantrel
