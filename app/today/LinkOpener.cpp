#include "today/LinkOpener.h"

#include <QDesktopServices>
#include <QUrl>

#include "today/SchemeHandler.h"

namespace vantrel {

LinkOpener::Result LinkOpener::open(const std::string& link) {
  const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(link), QUrl::StrictMode);
  if (!url.isValid()) return Result::kFailed;
  // Asked first: the desktop's opener may fail long after it was started, and silently.
  if (handlerForScheme(url.scheme()).isEmpty()) return Result::kNoHandler;
  return QDesktopServices::openUrl(url) ? Result::kOpened : Result::kFailed;
}

}  // namespace vantrel
