#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <string>

namespace vantrel {

/// Sees to it that there is one window: the program that holds the application's name on the
/// session bus is the one that later starts talk to (org.freedesktop.Application). Main thread.
class ApplicationService : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  /// What the desktop, or a later start, can ask for. `open` and `perform` are false for a link
  /// that leads to no plan and an action that there is not.
  struct Actions {
    std::function<void()> activate;
    std::function<bool(const std::string& link)> open;
    std::function<bool(const QString& name)> perform;
  };

  /// `store` tells programs apart that look at different plans: they do not stand in for each
  /// other.
  ApplicationService(std::string store, Actions actions);

  enum class Role {
    kFirst,   ///< This program holds the name now.
    kAlone,   ///< There is no bus, or nobody there who could stand in.
    kServed,  ///< Another program has done what was asked.
  };
  /// Takes the name, else asks the program that has it to show the window or, with a link, a plan,
  /// or to perform an action. Hands on the desktop's permission to come to the front.
  Role start(const std::string& link, const QString& action);
  /// Asks the program that has the name, if there is one, to perform an action. Returns false if
  /// nobody does.
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
