#pragma once

#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace vantrel::test {

/// The answer for a path: bytes, then the state of the connection.
struct Reply {
  enum class After { kClose, kHang, kDrip };
  std::string bytes;
  After after = After::kClose;
};

inline std::string httpReply(const std::string& body, const std::string& status = "200 OK",
                             const std::string& headers = "") {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         headers + "Connection: close\r\n\r\n" + body;
}

/// An HTTP server on loopback in a separate thread; with `tls`, an HTTPS server.
class LoopbackServer {
 public:
  explicit LoopbackServer(std::map<std::string, Reply> replies, const QSslConfiguration* tls = {})
      : replies_(std::move(replies)) {
    if (tls) {
      auto secure = std::make_unique<QSslServer>();
      secure->setSslConfiguration(*tls);
      server_ = std::move(secure);
    } else {
      server_ = std::make_unique<QTcpServer>();
    }
    server_->listen(QHostAddress::LocalHost);
    port_ = server_->serverPort();
    server_->moveToThread(&thread_);
    QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable, server_.get(),
                     [this] { accept(); });
    QObject::connect(&thread_, &QThread::finished, [this] { server_.reset(); });
    thread_.start();
  }
  ~LoopbackServer() {
    thread_.quit();
    thread_.wait();
  }

  std::string address(const std::string& scheme = "http") const {
    return scheme + "://127.0.0.1:" + std::to_string(port_);
  }
  /// The requested targets, in order.
  std::vector<std::string> requests() {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  void accept() {
    while (QTcpSocket* socket = server_->nextPendingConnection()) {
      QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
      read(*socket);
    }
  }

  void read(QTcpSocket& socket) {
    if (!socket.peek(1 << 16).contains("\r\n\r\n")) return;
    const std::string request = socket.readAll().toStdString();
    const auto start = request.find(' ') + 1;
    const std::string target = request.substr(start, request.find(' ', start) - start);
    {
      const std::lock_guard lock(mutex_);
      requests_.push_back(target);
    }
    const auto found = replies_.find(target.substr(0, target.find('?')));
    answer(socket, found == replies_.end() ? Reply{httpReply("", "404 Not Found")} : found->second);
  }

  static void answer(QTcpSocket& socket, const Reply& reply) {
    socket.write(reply.bytes.data(), static_cast<qint64>(reply.bytes.size()));
    if (reply.after == Reply::After::kClose) socket.disconnectFromHost();
    if (reply.after == Reply::After::kDrip) {
      auto* timer = new QTimer(&socket);
      QObject::connect(timer, &QTimer::timeout, &socket, [&socket] { socket.write(" "); });
      timer->start(20);
    }
  }

  QThread thread_;
  std::unique_ptr<QTcpServer> server_;
  std::map<std::string, Reply> replies_;
  quint16 port_ = 0;
  std::mutex mutex_;
  std::vector<std::string> requests_;
};

}  // namespace vantrel::test
