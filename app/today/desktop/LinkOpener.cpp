#include "today/desktop/LinkOpener.h"

#include <QDesktopServices>
#include <QUrl>

#include "today/AppId.h"
#include "today/desktop/SchemeHandler.h"

namespace vantrel {

LinkOpener::Result LinkOpener::open(const std::string& link) {
  const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(link), QUrl::StrictMode);
  if (!url.isValid()) return Result::kFailed;
  const bool isPlan = url.scheme() == QLatin1String("vantrel");
  // Checked first: the desktop's opener may fail later, without an error.
  const QString handler = handlerForScheme(url.scheme());
  if (showPlan_ && isPlan && (handler.isEmpty() || handler == QLatin1String(kLinkEntry))) {
    return showPlan_(link) ? Result::kOpened : Result::kNoPlan;
  }
  if (handler.isEmpty()) return Result::kNoHandler;
  return QDesktopServices::openUrl(url) ? Result::kOpened : Result::kFailed;
}

}  // namespace vantrel
