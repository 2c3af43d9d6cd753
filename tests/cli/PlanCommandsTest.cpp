#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "cli/CommandLineFixture.h"

namespace vantrel {
namespace {

using nlohmann::json;
using PlanCommands = test::CommandLineTest;

TEST_F(PlanCommands, AddFromSeveralProcessesAtOnce) {
  constexpr int kProcesses = 6;
  constexpr int kPlans = 5;
  std::vector<std::thread> threads;
  for (int i = 0; i < kProcesses; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < kPlans; ++k) add({"--name", "At once"});
    });
  }
  for (auto& thread : threads) thread.join();
  std::map<std::string, int> uris;
  const auto list = json::parse(run({"plan", "list", "--json"}).output);
  for (const auto& plan : list["plans"]) ++uris[plan["uri"]];
  EXPECT_EQ(uris.size(), static_cast<std::size_t>(kProcesses * kPlans));
}

}  // namespace
}  // namespace vantrel
