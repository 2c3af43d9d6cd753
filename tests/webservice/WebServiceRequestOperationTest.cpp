#include "webservice/WebServiceRequestOperation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <stdexcept>

#include "platform/qt/QtMainQueue.h"
#include "platform/qt/QtOperationQueue.h"
#include "platform/qt/QtUrlSession.h"
#include "platform/system/UrlSession.h"
#include "support/Guards.h"
#include "today/Application.h"
#include "webservice/LoopbackServer.h"

namespace vantrel {
namespace {

using test::httpReply;
using test::Reply;
using testing::ElementsAre;
using testing::HasSubstr;
using Notices = std::vector<std::string>;

/// Records notices and their thread.
struct Listener : WebServiceRequestOperationDelegate {
  void webServiceRequestOperationNetworkIsActive(WebServiceRequestOperation& operation,
                                                 bool isActive) override {
    hear(isActive ? "active" : "idle");
    if (isActive && cancels) operation.cancel();
  }
  void webServiceRequestOperationDidFailWithError(WebServiceRequestOperation& /*operation*/,
                                                  const std::optional<Error>& error) override {
    hear(!error ? "error"
                : error->domain + " " +
                      (error->domain == "org.geonames" ? std::to_string(error->code) + " " : "") +
                      error->localizedDescription);
  }
  void hear(const std::string& notice) {
    notices.push_back((QThread::currentThread() == qApp->thread() ? "" : "off the main thread: ") +
                      notice);
  }
  Notices notices;
  bool cancels = false;
};

class Request : public WebServiceRequestOperation {
 public:
  Request(std::string url, std::shared_ptr<Listener> listener)
      : url_(std::move(url)), listener_(std::move(listener)) {
    setDelegate(listener_);
  }
  std::string urlString() const override { return url_; }
  std::string getCheckDataKey() const override { return "srtm3"; }
  void processResponseWithResult(const JsonAnswer& result) override {
    const auto number = result["srtm3"].asNumber();
    listener_->hear("result " + (number ? std::to_string(int(*number)) : "null"));
  }

 private:
  std::string url_;
  std::shared_ptr<Listener> listener_;
};

std::string token() {
  return WebServiceRequestOperation().token();
}

class WebServiceRequest : public testing::Test {
 protected:
  WebServiceRequest() {
    test::needApplication();
    MainQueue::install(std::make_shared<QtMainQueue>());
    setTimeout(WebServiceRequestOperation::kTimeout);
  }
  ~WebServiceRequest() override {
    UrlSession::install(nullptr);
    MainQueue::install(nullptr);
  }

  void setTimeout(double seconds) {
    QtUrlSession::Limits limits;
    limits.mostTimeout = seconds;
    UrlSession::install(std::make_shared<QtUrlSession>(cache_ / "urls", limits));
  }
  void start(const std::string& url, std::int32_t serverType = 0) {
    auto operation = std::make_shared<Request>(url, listener_);
    operation->setServerType(serverType);
    last_ = operation;
    queue_.addOperation(std::move(operation));
  }
  /// Returns the notices of a request. Everything pending for it owns it: when it is destroyed, no
  /// more follow.
  Notices noticesOf(const std::string& url, std::int32_t serverType = 0) {
    listener_->notices.clear();
    start(url, serverType);
    EXPECT_TRUE(test::waitFor([this] { return last_.expired(); }));
    return listener_->notices;
  }

  test::TemporaryDirectory cache_;
  std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
  QtOperationQueue queue_;
  std::weak_ptr<Request> last_;
};

TEST_F(WebServiceRequest, DistinguishesTheServicesErrors) {
  using Expected = std::vector<testing::Matcher<std::string>>;
  const std::string refused = R"({"status": {"message": "limit exceeded", "value": 18}})";
  const std::string found = R"({"status": "OK", "results": [{"srtm3": 3}, 4]})";
  const std::string denied = R"({"status": "REQUEST_DENIED", "error_message": "no key"})";
  const Expected overLimit = {"idle", "org.geonames 18 limit exceeded"};
  const Expected unknown = {"idle", "org.geonames 15 Geonames unkowin lookup error"};
  const auto notJson = [](const char* why) {
    return Expected{"idle",
                    testing::StartsWith(std::string("JSON The answer is not JSON: ") + why)};
  };
  const struct {
    std::string reply;
    Expected expected;  ///< After "active".
    std::int32_t serverType = 0;
    std::string log = {};
  } cases[] = {
      {httpReply(R"({"srtm3": 12})"), {"idle", "result 12"}},
      {httpReply(R"({"srtm3": null})"), {"idle", "result null"}},
      {httpReply(refused), overLimit},
      {httpReply(refused, "401 Unauthorized"), overLimit},
      {httpReply(R"({"status": {"value": "19"}})"), {"idle", "org.geonames 19 "}},
      {httpReply("{}"), unknown},
      {httpReply(R"({"status": "18"})"), unknown},
      {httpReply("<html>busy</html>", "503 Busy"), notJson("parse error")},
      {httpReply("12"), notJson("neither")},
      {"HTTP/1.1 200 OK\r\n\r\n{\"srtm3\": 1", notJson("")},
      {httpReply(std::string(5 << 20, '[')), notJson("nested")},
      {httpReply(found), {"idle", "result 3"}, 1},
      {httpReply(R"({"status": "OK", "results": []})"), {}, 1},
      {httpReply(denied), {"idle", "error"}, 1, "Google API Error: no key\n"},
      {httpReply("[]"), {"idle", "error"}, -1, "Google API Error: (null)\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reply.substr(0, 200));
    test::LoopbackServer server({{"/", {c.reply}}});
    test::LogCapture log;
    auto expected = c.expected;
    expected.insert(expected.begin(), "active");
    EXPECT_THAT(noticesOf(server.address() + "/", c.serverType),
                testing::ElementsAreArray(expected));
    EXPECT_EQ(log.text(), c.log);
  }
}

TEST_F(WebServiceRequest, ReportsTransportErrors) {
  using After = Reply::After;
  const std::string head = "HTTP/1.1 200 OK\r\nConnection: close\r\n";
  const std::string much(9 << 20, ' ');
  const auto redirect = [](const std::string& url) {
    return Reply{httpReply("", "302 Found", "Location: " + url + "\r\n")};
  };
  const struct {
    Reply reply;
    const char* error;
  } cases[] = {
      {{head + "Content-Length: 99\r\n\r\n{\"srtm3\": 1"}, "closed"},
      {{"", After::kHang}, "timed out"},
      {{head + "\r\n{\"srtm3\": 1}", After::kDrip}, "timed out"},
      {{head + "\r\n" + much, After::kHang}, "too large"},
      {{httpReply(much)}, "too large"},
      {redirect("http://127.0.0.1:1/"), "not https"},
      {redirect("file:///etc/passwd"), "protocol"},
      {redirect("https://127.0.0.1:1/"), "refused"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reply.bytes.substr(0, 200));
    setTimeout(c.error == std::string("timed out") ? 0.2 : WebServiceRequestOperation::kTimeout);
    test::LoopbackServer server({{"/", c.reply}});
    test::LogCapture log;
    const auto notices =
        noticesOf(server.address() + "/?username=vantrel&token=" + token() + "&lat=1");
    EXPECT_THAT(notices, ElementsAre("active", "idle", HasSubstr(c.error)));
    EXPECT_THAT(notices.back(), testing::StartsWith("UrlSession "));
    EXPECT_THAT(log.text(),
                testing::MatchesRegex("Connection failed! Error - .* http://127.0.0.1:"
                                      ".*/\\?username=\\*\\*\\*&token=\\*\\*\\*&lat=1\n"));
  }
}

TEST_F(WebServiceRequest, RejectsASelfSignedCertificate) {
  const auto key = (cache_ / "key.pem").string();
  const auto certificate = (cache_ / "cert.pem").string();
  const auto made = test::runProgram(
      {"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=127.0.0.1",
       "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  auto tls = QSslConfiguration::defaultConfiguration();
  tls.setLocalCertificate(QSslCertificate(QByteArray::fromStdString(test::readFile(certificate))));
  tls.setPrivateKey(QSslKey(QByteArray::fromStdString(test::readFile(key)), QSsl::Rsa));
  test::LoopbackServer server({{"/", {httpReply(R"({"srtm3": 1})")}}}, &tls);
  test::LogCapture log;
  EXPECT_THAT(noticesOf(server.address("https") + "/"),
              ElementsAre("active", "idle", HasSubstr("self-signed")));
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(WebServiceRequest, CachesAnswersThatTheServerCallsFresh) {
  const std::string body = R"({"srtm3": 7})";
  const auto reply = [&](const char* headers) { return httpReply(body, "200 OK", headers); };
  const std::string chunked =
      "HTTP/1.1 200 OK\r\nConnection: close\r\nCache-Control: max-age=3600\r\n"
      "Transfer-Encoding: chunked\r\n\r\nc\r\n" +
      body + "\r\n0\r\n\r\n";
  const struct {
    std::string reply;
    bool isKept;
  } cases[] = {
      {reply("Cache-Control: max-age=3600\r\n"), true},
      {reply("Expires: Fri, 01 Jan 2100 00:00:00 GMT\r\n"), true},
      {reply(""), false},
      {reply("Cache-Control: max-age=0\r\n"), false},
      {reply("Expires: Thu, 01 Jan 1998 00:00:00 GMT\r\n"), false},
      {reply("Cache-Control: no-store, max-age=3600\r\n"), false},
      {chunked, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reply);
    test::LoopbackServer server({{"/", {c.reply}}});
    const std::string url = server.address() + "/?token=" + token();
    EXPECT_THAT(noticesOf(url), ElementsAre("active", "idle", "result 7"));
    const auto again = noticesOf(url);
    EXPECT_EQ(server.requests().size(), c.isKept ? 1u : 2u);
    EXPECT_EQ(again,
              c.isKept ? Notices({"idle", "result 7"}) : Notices({"active", "idle", "result 7"}));
  }
}

TEST_F(WebServiceRequest, CachesNoAccountAndIgnoresGarbage) {
  const auto reply = httpReply(R"({"srtm3": 7})", "200 OK", "Cache-Control: max-age=3600\r\n");
  test::LoopbackServer server({{"/", {reply}}});
  const std::string url = server.address() + "/?token=" + token();
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(noticesOf(url), ElementsAre("active", "idle", "result 7"));
    int files = 0;
    for (const auto& file : std::filesystem::recursive_directory_iterator(cache_.path())) {
      if (!file.is_regular_file()) continue;
      ++files;
      EXPECT_EQ(test::readFile(file).find(token()), std::string::npos) << file;
      EXPECT_EQ(file.status().permissions() & std::filesystem::perms(077),
                std::filesystem::perms::none);
      test::writeFile(file, "garbage");
    }
    EXPECT_EQ(files, 1);
  }
}

TEST_F(WebServiceRequest, AnswersAHundredAtOnce) {
  test::LoopbackServer server({{"/", {httpReply(R"({"srtm3": 1})")}}});
  for (int i = 0; i < 100; ++i) start(server.address() + "/?" + std::to_string(i));
  auto& notices = listener_->notices;
  EXPECT_TRUE(test::waitFor([&] { return notices.size() == 300; }));
  EXPECT_EQ(std::count(notices.begin(), notices.end(), "result 1"), 100);
}

TEST_F(WebServiceRequest, IsSilentOnceCancelled) {
  listener_->cancels = true;
  test::LoopbackServer server({{"/", {httpReply(R"({"srtm3": 1})")}}});
  EXPECT_THAT(noticesOf(server.address() + "/"), ElementsAre("active"));
  EXPECT_THAT(noticesOf("http://127.0.0.1:1/"), ElementsAre("active"));

  const auto operation = std::make_shared<Request>(server.address() + "/", listener_);
  operation->processData(R"({"srtm3": 1})");
  operation->cancel();
  listener_->notices.clear();
  noticesOf(server.address() + "/");
  EXPECT_THAT(listener_->notices, ElementsAre("active"));
}

TEST_F(WebServiceRequest, EndsWithItsSession) {
  test::LoopbackServer server(std::map<std::string, Reply>{{"/", {"", Reply::After::kHang}}});
  start(server.address() + "/");
  EXPECT_TRUE(test::waitFor([&] { return !server.requests().empty(); }));
  UrlSession::install(nullptr);
  EXPECT_TRUE(test::waitFor([this] { return last_.expired(); }));
  EXPECT_THAT(listener_->notices, ElementsAre("active"));
}

TEST(WebServiceRequestOperation, IsAbstract) {
  WebServiceRequestOperation operation;
  EXPECT_EQ(operation.username(), "vantrel");
  EXPECT_EQ(operation.token().size(), 18u);
  const auto tells = [](const char* name) {
    return testing::ThrowsMessage<std::logic_error>(std::string("You must override ") + name +
                                                    " in a subclass");
  };
  EXPECT_THAT([&] { operation.urlString(); }, tells("urlString"));
  EXPECT_THAT([&] { operation.getCheckDataKey(); }, tells("getCheckDataKey"));
  EXPECT_THAT([&] { operation.processResponseWithResult(*JsonAnswer::answerWithData("[]")); },
              tells("processResponseWithResult:"));
}

}  // namespace
}  // namespace vantrel
