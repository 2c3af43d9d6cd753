#include "today/desktop/LinkOpener.h"

#include <QDesktopServices>
#include <QUrl>

#include "today/AppId.h"
#include "today/desktop/SchemeHandler.h"

namespace vantrel {

LinkOpener::Result LinkOpener::open(const std::string& link) {
  const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(link), QUrl::StrictMode);
  if (!url.isValid()) return Result::kFailed;
  // Asked first: the desktop's opener may fail long after it was started, and silently.
  const QString handler = handlerForScheme(url.scheme());
  if (handler.isEmpty()) return Result::kNoHandler;
  if (showPlan_ && handler == QLatin1String(kLinkEntry)) {
    return showPlan_(link) ? Result::kOpened : Result::kNoPlan;
  }
  return QDesktopServices::openUrl(url) ? Result::kOpened : Result::kFailed;
}

}  // namespace vantrel
