#include "cli/Command.h"
#include "cli/plan/PlanJson.h"
#include "cli/plan/PlanText.h"
#include "common/ExitCode.h"
#include "common/LinkedPlan.h"
#include "common/StoreAccess.h"

namespace vantrel::cli {

namespace {

int openLink(const std::optional<std::string>& link, Console& console) {
  const auto plan = uriFromLink(*link).and_then([](const std::string& uri) {
    return contextForReading().and_then([&](auto* context) { return planWithURI(*context, uri); });
  });
  if (!plan) return console.fail(plan.error());
  console.print(console.isJson() ? jsonText(**plan) : planDetails(**plan, console));
  return kExitDone;
}

}  // namespace

void fillOpenCommand(CLI::App& parser, Session& session) {
  addTextOption(parser, "LINK", setCommand(parser, session, &openLink), "", "vantrel://plan?id=…");
}

}  // namespace vantrel::cli
