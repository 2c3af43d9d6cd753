#include <QCoreApplication>
#include <QNetworkProxyFactory>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>

#include "base/Log.h"
#include "common/ExitCode.h"
#include "common/ProgramStart.h"
#include "lookup/Account.h"
#include "lookup/Lookup.h"
#include "lookup/LookupOptions.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtUrlSession.h"
#include "platform/system/Paths.h"

namespace vantrel {

namespace {

Expected<nlohmann::json> answer(LookupOptions options) {
  const auto read = checkEnvironment().and_then([&] { return options.readEnvironment(); });
  if (!read) return tl::unexpected(read.error());
  QNetworkProxyFactory::setUseSystemConfiguration(true);
  MainQueue::install(std::make_shared<QtMainQueue>());
  auto cache = paths::cacheDirectory();
  if (cache) *cache /= "lookups";
  UrlSession::install(std::make_shared<QtUrlSession>(cache, QtUrlSession::Limits()));
  return accountOfUser(options).and_then(
      [&](const auto& account) { return lookUp(options, account); });
}

int run(const LookupOptions& options) {
  const auto result = answer(options);
  const auto json =
      result ? *result : nlohmann::json{{"error", result.error().localizedDescription}};
  const std::string text =
      json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  std::fwrite(text.data(), 1, text.size(), stdout);
  return result ? kExitDone : exitCodeForError(result.error());
}

/// Qt crashes after it could not create a thread.
void printMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text) {
  if (text.contains(QLatin1String("Thread creation error"))) std::get_new_handler()();
  std::fprintf(stderr, "vantrel-lookup: %s\n", qPrintable(text));
}

}  // namespace

}  // namespace vantrel

int main(int argc, char** argv) {
  vantrel::exitWhenOutOfMemory("vantrel-lookup");
  vantrel::LookupOptions options;
  if (const auto code = vantrel::LookupOptions::parse(argc, argv, options)) return *code;
  // Errors are reported once, in the answer.
  vantrel::setLogsEnabled(false);
  qInstallMessageHandler(&vantrel::printMessage);
  const QCoreApplication application(argc, argv);
  const int code = vantrel::run(options);
  std::fflush(stdout);
  // Returning from main would wait for a name server that does not answer.
  std::_Exit(code);
}
