#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <optional>

namespace vantrel {

/// What the user chose for all applications: colours, motion, text size. Asked of the
/// desktop's settings portal and followed while the program runs; without a portal the palette and
/// the font decide. Main thread.
class DesktopSettings : public QObject {
  Q_OBJECT

 public:
  explicit DesktopSettings(QObject* parent = nullptr);

  bool isDark() const;
  bool wantsContrast() const { return highContrast_; }
  bool reducesMotion() const { return reducedMotion_ || !animations_; }
  /// Factor on the card's texts, 1 for a desktop as it is delivered.
  double textScale() const;

 signals:
  void changed();
  /// The portal told the colour scheme, or there is none to ask; once.
  void answered();

 private slots:
  /// Takes the message whole: Qt 6.4 connects no slot with a variant before the first reply came.
  void settingChanged(const QDBusMessage& message);

 private:
  void ask(const QString& group, const QString& key);
  bool take(const QString& group, const QString& key, QVariant value);

  std::optional<bool> dark_;
  bool highContrast_ = false;
  bool reducedMotion_ = false;
  bool animations_ = true;
  double textScalingFactor_ = 1;
};

/// The factor for a desktop font of that size: desktops are delivered with 9 to 11 points.
double textScaleForPointSize(double points);

}  // namespace vantrel
