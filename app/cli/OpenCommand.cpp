#include <CLI/App.hpp>
#include <memory>

#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/PlanJson.h"
#include "cli/PlanLink.h"
#include "cli/PlanText.h"
#include "cli/StoreAccess.h"

namespace vantrel::cli {

namespace {

int openLink(const std::string& link, Console& console) {
  const auto uri = uriFromLink(link);
  if (!uri) return console.fail(uri.error());
  const auto context = contextForReading();
  if (!context) return console.fail(context.error());
  const auto plan = planWithURI(**context, *uri);
  if (!plan) return console.fail(plan.error());
  console.print(console.isJson() ? jsonText(**plan) : planDetails(**plan, console));
  return kExitDone;
}

}  // namespace

void fillOpenCommand(CLI::App& parser, Session& session) {
  const auto link = std::make_shared<std::string>();
  const auto keep = [link](const CLI::results_t& values) {
    *link = typedText(values.front());
    return true;
  };
  parser.add_option("LINK", keep, "vantrel://plan?id=…")->required()->type_name("");
  parser.callback([link, &session] { session.exitCode = openLink(*link, session.console); });
}

}  // namespace vantrel::cli
