#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <string>

namespace vantrel {

/// Ensures that one process shows the windows: the first owns the application's name on the session
/// bus, and later starts send it their requests (org.freedesktop.Application). Main thread only.
class ApplicationService : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  /// The requests of the desktop and of later starts. `open` returns false if the link leads to no
  /// plan, `perform` if the action is unknown.
  struct Actions {
    std::function<void()> activate;
    std::function<bool(const std::string& link)> open;
    std::function<bool(const QString& name)> perform;
  };

  /// Processes with different values of `store` ignore each other's requests.
  ApplicationService(std::string store, Actions actions);

  enum class Role {
    kFirst,   ///< This process now owns the name.
    kAlone,   ///< There is no bus, or no other process for this store.
    kServed,  ///< Another process has performed the request.
  };
  /// Acquires the name. If another process owns it, asks that process to show the window, to open
  /// `link`, or to perform `action`, and passes on the desktop's permission to come to the front.
  Role start(const std::string& link, const QString& action);
  /// Asks the process that owns the name to perform an action. Returns false if there is none.
  bool ask(const QString& action) const;

 public slots:
  void Activate(const QVariantMap& platformData);
  void Open(const QStringList& links, const QVariantMap& platformData);
  void ActivateAction(const QString& name, const QVariantList& parameters,
                      const QVariantMap& platformData);

 private:
  bool accepts(const QVariantMap& platformData);
  bool askFirst(const std::string& link, const QString& action) const;

  std::string store_;
  Actions actions_;
};

}  // namespace vantrel
