#include "platform/qt/QtUrlSession.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QTimer>
#include <algorithm>
#include <deque>
#include <utility>

#include "platform/system/Paths.h"

namespace vantrel {

namespace {

/// Qt's limit of connections to one server, so that no load times out waiting for a connection.
constexpr int kMostLoads = 6;
constexpr int kMostRedirects = 5;

/// Stores responses under a digest of their URL, which may contain an account and places.
class DigestCache : public QNetworkDiskCache {
 public:
  QNetworkCacheMetaData metaData(const QUrl& url) override {
    return QNetworkDiskCache::metaData(digest(url));
  }
  void updateMetaData(const QNetworkCacheMetaData& metaData) override {
    QNetworkDiskCache::updateMetaData(digested(metaData));
  }
  QIODevice* data(const QUrl& url) override { return QNetworkDiskCache::data(digest(url)); }
  bool remove(const QUrl& url) override { return QNetworkDiskCache::remove(digest(url)); }
  QIODevice* prepare(const QNetworkCacheMetaData& metaData) override {
    // A truncated response of unknown length would be stored as a complete one.
    const auto headers = metaData.rawHeaders();
    const bool hasLength = std::any_of(headers.begin(), headers.end(), [](const auto& header) {
      return header.first.compare("content-length", Qt::CaseInsensitive) == 0;
    });
    return hasLength ? QNetworkDiskCache::prepare(digested(metaData)) : nullptr;
  }

 private:
  static QUrl digest(const QUrl& url) {
    // Qt passes URLs from here back to this class.
    if (url.scheme() == QLatin1String("digest")) return url;
    const auto hash = QCryptographicHash::hash(url.toEncoded(), QCryptographicHash::Sha256);
    return QUrl(QStringLiteral("digest:") + QString::fromLatin1(hash.toHex()));
  }
  static QNetworkCacheMetaData digested(QNetworkCacheMetaData metaData) {
    metaData.setUrl(digest(metaData.url()));
    return metaData;
  }
};

QUrl urlOf(const UrlRequest& request) {
  return QUrl::fromEncoded(QByteArray::fromStdString(request.url), QUrl::StrictMode);
}

QNetworkRequest networkRequest(const UrlRequest& request) {
  QNetworkRequest result(urlOf(request));
  result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  for (const auto attribute :
       {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
        QNetworkRequest::AuthenticationReuseAttribute}) {
    result.setAttribute(attribute, QNetworkRequest::Manual);
  }
  result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                      QNetworkRequest::UserVerifiedRedirectPolicy);
  result.setMaximumRedirectsAllowed(kMostRedirects);
  result.setRawHeader("User-Agent", "Vantrel");
  // Compressed responses could exceed the size limit before it is checked.
  result.setRawHeader("Accept-Encoding", "identity");
  return result;
}

/// Error statuses such as 404 are answers too: their bodies describe the error.
bool isAnswer(const QNetworkReply& reply) {
  constexpr int kFirstErrorStatus = 400;
  const auto error = reply.error();
  if (error == QNetworkReply::NoError) return true;
  const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  return status >= kFirstErrorStatus && (error == QNetworkReply::ProtocolInvalidOperationError ||
                                         (error >= QNetworkReply::ContentAccessDenied &&
                                          error <= QNetworkReply::UnknownContentError) ||
                                         (error >= QNetworkReply::InternalServerError &&
                                          error <= QNetworkReply::UnknownServerError));
}

std::chrono::milliseconds milliseconds(double seconds) {
  return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
}

/// One load. Calls `ended` once.
class Load : public QObject {
 public:
  using Ended = std::function<void(Load& load, Expected<std::string> body)>;

  Load(QNetworkReply& reply, const UrlRequest& request, const QtUrlSession::Limits& limits,
       Ended ended)
      : reply_(reply),
        url_(request.url),
        mostBytes_(limits.mostBytes),
        timeout_(milliseconds(std::min(request.timeoutInterval, limits.mostTimeout))),
        end_(timeout_ * limits.mostTimeouts),
        ended_(std::move(ended)) {
    reply.setParent(this);
    silence_.setSingleShot(true);
    connect(&silence_, &QTimer::timeout, this, [this] { giveUp("The request timed out."); });
    connect(&reply, &QNetworkReply::metaDataChanged, this, &Load::waitForMore);
    connect(&reply, &QNetworkReply::readyRead, this, &Load::takeBytes);
    connect(&reply, &QNetworkReply::redirected, this, &Load::followRedirect);
    connect(&reply, &QNetworkReply::finished, this, &Load::finish);
    waitForMore();
  }

 private:
  void waitForMore() {
    silence_.start(std::min(timeout_, std::chrono::duration_cast<std::chrono::milliseconds>(
                                          end_.remainingTimeAsDuration())));
  }

  void takeBytes() {
    waitForMore();
    const QByteArray bytes = reply_.readAll();
    body_.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (body_.size() > mostBytes_) giveUp("The answer is too large.");
  }

  void followRedirect(const QUrl& url) {
    if (url.scheme() == QLatin1String("https")) {
      Q_EMIT reply_.redirectAllowed();
    } else {
      giveUp("The server redirects to an address that is not https.");
    }
  }

  void giveUp(const char* reason) {
    if (!reason_.empty()) return;
    reason_ = reason;
    reply_.abort();
  }

  void finish() {
    if (reason_.empty()) takeBytes();
    silence_.stop();
    // If the last piece exceeded the limit, the reply had finished before `abort`.
    if (reason_.empty() && isAnswer(reply_)) {
      ended_(*this, std::move(body_));
      return;
    }
    const std::string why = reason_.empty() ? reply_.errorString().toStdString() : reason_;
    ended_(*this,
           tl::unexpected(Error{UrlSession::kErrorDomain, reply_.error(), why, {{"url", url_}}}));
  }

  QNetworkReply& reply_;
  std::string url_;
  std::size_t mostBytes_;
  std::chrono::milliseconds timeout_;
  QDeadlineTimer end_;
  Ended ended_;
  QTimer silence_{this};
  std::string body_;
  std::string reason_;
};

}  // namespace

/// The part of the session in its thread.
class QtUrlSession::Loader : public QObject {
 public:
  Loader(const std::optional<std::filesystem::path>& cacheDirectory, const Limits& limits)
      : limits_(limits) {
    if (!cacheDirectory || !paths::createPrivateDirectory(*cacheDirectory)) return;
    cache_ = new DigestCache;
    cache_->setCacheDirectory(QString::fromStdString(cacheDirectory->string()));
    cache_->setMaximumCacheSize(static_cast<qint64>(limits.mostCacheBytes));
    manager_.setCache(cache_);
  }

  std::optional<std::string> stored(const UrlRequest& request) {
    if (!cache_) return std::nullopt;
    const QUrl url = urlOf(request);
    const auto metaData = cache_->metaData(url);
    // Responses without an expiration date are never fresh.
    if (!metaData.isValid() || metaData.expirationDate() <= QDateTime::currentDateTimeUtc()) {
      return std::nullopt;
    }
    const std::unique_ptr<QIODevice> device(cache_->data(url));
    if (!device) return std::nullopt;
    return device->readAll().toStdString();
  }

  void load(UrlRequest request, Completion completion) {
    waiting_.push_back({std::move(request), std::move(completion)});
    startNext();
  }

 private:
  struct Waiting {
    UrlRequest request;
    Completion completion;
  };

  void startNext() {
    if (loads_ == kMostLoads || waiting_.empty()) return;
    Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    ++loads_;
    auto* reply = manager_.get(networkRequest(next.request));
    auto* load = new Load(
        *reply, next.request, limits_,
        [this, completion = std::move(next.completion)](Load& done, Expected<std::string> body) {
          done.deleteLater();
          --loads_;
          completion(std::move(body));
          startNext();
        });
    load->setParent(&loadParent_);
  }

  Limits limits_;
  QNetworkAccessManager manager_{this};
  QObject loadParent_{this};      ///< Destroys pending loads before the manager.
  DigestCache* cache_ = nullptr;  ///< Owned by the manager.
  std::deque<Waiting> waiting_;
  int loads_ = 0;
};

QtUrlSession::QtUrlSession(const std::optional<std::filesystem::path>& cacheDirectory,
                           Limits limits)
    : loader_(new Loader(cacheDirectory, limits)) {
  loader_->moveToThread(&thread_);
  QObject::connect(&thread_, &QThread::finished, loader_, &QObject::deleteLater);
  thread_.start();
}

QtUrlSession::~QtUrlSession() {
  thread_.quit();
  thread_.wait();
}

std::optional<std::string> QtUrlSession::cachedResponse(const UrlRequest& request) {
  std::optional<std::string> stored;
  const bool isOwnThread = QThread::currentThread() == &thread_;
  QMetaObject::invokeMethod(
      loader_, [&] { stored = loader_->stored(request); },
      isOwnThread ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
  return stored;
}

void QtUrlSession::dataTask(const UrlRequest& request, Completion completion) {
  auto load = [this, copy = UrlRequest(request), completion = std::move(completion)]() mutable {
    loader_->load(std::move(copy), std::move(completion));
  };
  QMetaObject::invokeMethod(loader_, std::move(load), Qt::QueuedConnection);
}

}  // namespace vantrel
