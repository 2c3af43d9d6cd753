#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <optional>

namespace vantrel {

/// The user's settings for all applications: colours, motion, text size. They come from the
/// desktop's settings portal and are kept up to date; without a portal, from palette and font. Main
/// thread only.
class DesktopSettings : public QObject {
  Q_OBJECT

 public:
  explicit DesktopSettings(QObject* parent = nullptr);

  bool isDark() const;
  bool wantsContrast() const { return highContrast_; }
  bool reducesMotion() const { return reducedMotion_ || !animations_; }
  /// The scale of the card's texts, 1 by default.
  double textScale() const;

 signals:
  void changed();
  /// Emitted once, when the colour scheme is known or there is no portal.
  void answered();

 private slots:
  /// Takes the whole message: Qt 6.4 connects no slot with a variant before the first reply.
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

/// Returns the text scale for a desktop font of that size: the defaults of desktops are 9 to 11
/// points.
double textScaleForPointSize(double points);

}  // namespace vantrel
