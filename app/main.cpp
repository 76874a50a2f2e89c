#include <QApplication>
#include <QDebug>
#include <QDir>
#include <clocale>

#include "main_window.h"
#include "screen_metrics.h"
#include "startup.h"

// The order matters from line to line: the scale has to be in the environment before the
// application object reads it, and the current directory has to be right before anything looks for
// a table.
int main(int argc, char** argv) {
  const QPalette palette = ApplicationPalette();
  QCoreApplication::setAttribute(Qt::AA_DisableHighDpiScaling, true);
  ApplyScaleFactor(ReadScreenMetrics());

  QApplication application(argc, argv);
  // The application object has just taken over the user's locale, with which "0.5" may read as 0.
  std::setlocale(LC_NUMERIC, "C");

  const QString exe_dir = QApplication::applicationDirPath();
  const QString root = ResolveInstallRoot(exe_dir);
  QDir::setCurrent(root);
  qDebug() << "[Tevron] applicationDirPath:" << exe_dir << "installRoot:" << root;

  const QFont font = ApplicationFont(root);
  QApplication::setPalette(palette);
  QApplication::setFont(font);

  QCoreApplication::setOrganizationName(QStringLiteral("KavelTech"));
  QCoreApplication::setOrganizationDomain(QStringLiteral("kaveltech.example"));
  QCoreApplication::setApplicationVersion(QStringLiteral(TEVRON_VERSION));
  StartDeviceLog();

  const QIcon icon = ApplicationIcon(root);
  if (!icon.isNull()) {
    QApplication::setWindowIcon(icon);
  }

  MainWindow window(nullptr, ModulePvArgument(argc, argv));
  window.setPalette(palette);
  window.show();
  return QApplication::exec();
}
