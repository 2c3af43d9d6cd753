#include <CLI/App.hpp>
#include <memory>
#include <string_view>

#include "base/PercentEncoding.h"
#include "cli/CommandGroup.h"
#include "cli/ExitCode.h"
#include "cli/PlanJson.h"
#include "cli/PlanLookup.h"
#include "cli/PlanText.h"
#include "cli/StoreAccess.h"

namespace vantrel::cli {

namespace {

constexpr std::string_view kLinkStart = "vantrel://plan?id=";

/// The object URI in a deep link. Links come from anywhere: nothing but the characters that the
/// widget leaves unescaped, and well-formed escapes, gets through.
Expected<std::string> uriFromLink(const std::string& link) {
  if (link.starts_with(kLinkStart)) {
    const std::string_view encoded = std::string_view(link).substr(kLinkStart.size());
    const std::string allowed = std::string(kUrlHostAllowedCharacterSet) + "%";
    const bool clean = encoded.find_first_not_of(allowed) == std::string_view::npos;
    if (const auto uri = percentDecoded(encoded); clean && uri) return *uri;
  }
  return tl::make_unexpected(
      failure(kExitBadData, link,
              "no link to a plan; those look like vantrel://plan?id=x-coredata:%2F%2F…"));
}

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
