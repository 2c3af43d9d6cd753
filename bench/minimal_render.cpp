// A minimal Qt Widgets program that draws ten labels into a PNG, for comparison with `vantrel-today
// --render`. Usage: minimal_render FILE.png

#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>
#include <QWidget>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QWidget window;
  QVBoxLayout layout(&window);
  for (int row = 0; row < 5; ++row) {
    auto* title = new QLabel(QStringLiteral("Milky Way over the lighthouse"));
    QFont bold = title->font();
    bold.setPixelSize(15);
    bold.setBold(true);
    title->setFont(bold);
    layout.addWidget(title);
    auto* date = new QLabel(QStringLiteral("7/15/26 11:40 PM"));
    QFont regular = date->font();
    regular.setPixelSize(15);
    date->setFont(regular);
    layout.addWidget(date);
  }
  window.resize(454, 377);
  const QString file = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("labels.png");
  return window.grab().save(file, "PNG") ? 0 : 1;
}
