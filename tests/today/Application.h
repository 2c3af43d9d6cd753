#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <memory>

namespace vantrel::test {

/// Holds the process's one application, which has to go before the toolkit's own globals do.
class ApplicationEnvironment : public testing::Environment {
 public:
  void TearDown() override { application_.reset(); }
  void make() {
    static int argc = 1;
    static char name[] = "vantrel_today_tests";
    static char* argv[] = {name, nullptr};
    if (!application_) application_ = std::make_unique<QApplication>(argc, argv);
  }

 private:
  std::unique_ptr<QApplication> application_;
};

/// Makes the application on first use.
inline void needApplication() {
  static auto* environment = static_cast<ApplicationEnvironment*>(
      testing::AddGlobalTestEnvironment(new ApplicationEnvironment));
  environment->make();
}

/// Wider than the rows of a card.
inline constexpr auto kLongTitle =
    "Milky Way over the lighthouse with the fishing boats, if the mist lifts before the moon is up";

/// Handles events until `condition` holds; false when it does not within a minute.
template <typename Condition>
bool waitFor(Condition condition) {
  return QTest::qWaitFor(condition, 60000);
}

}  // namespace vantrel::test
