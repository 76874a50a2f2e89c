#include "startup.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <algorithm>

#include "Log/logger.h"
#include "support_bundle/device_log.h"

namespace {

constexpr char kBoldFontFile[] = "fonts/Roboto-Bold-3.ttf";
constexpr char kRegularFontFile[] = "fonts/Roboto-Regular-14.ttf";
constexpr char kIconFile[] = "png/Tevron-LOGO-black.svg";
constexpr char kModelOption[] = "-modulePV=";

constexpr float kEnlargedDesktopRatio = 1.25F;
constexpr double kShareOfDesktopRatio = 0.8;
constexpr double kDesignWidthPx = 1920.0;

}  // namespace

QPalette ApplicationPalette() {
  struct Entry {
    QPalette::ColorRole role;
    QColor color;
  };
  const QColor text("#EEEEEE");
  const Entry entries[] = {
      {QPalette::ToolTipBase, QColor("#010101")},
      {QPalette::AlternateBase, QColor(1, 1, 1, 255)},
      {QPalette::Base, QColor(1, 1, 1, 255)},
      {QPalette::Dark, QColor("#222325")},
      {QPalette::Window, QColor("#2B2C2E")},
      {QPalette::Mid, QColor("#2B2C2E")},
      {QPalette::Button, QColor("#3A3D3F")},
      {QPalette::Midlight, QColor("#4D4D4D")},
      {QPalette::Light, QColor("#666666")},
      {QPalette::Highlight, QColor("#999999")},
      {QPalette::Text, text},
      {QPalette::ButtonText, text},
      {QPalette::WindowText, text},
      {QPalette::BrightText, text},
      {QPalette::HighlightedText, text},
      {QPalette::PlaceholderText, text},
  };
  QPalette palette;
  for (const Entry& entry : entries) {
    palette.setBrush(QPalette::All, entry.role, QBrush(entry.color));
  }
  return palette;
}

float ScreenRatio(int w, int h, int physical_w, int physical_h) {
  return std::min(static_cast<float>(physical_h) / static_cast<float>(h),
                  static_cast<float>(physical_w) / static_cast<float>(w));
}

double ComputeScaleFactor(int w, int h, int physical_w, int physical_h) {
  if (w <= 0 || h <= 0 || physical_w <= 0 || physical_h <= 0) {
    return 1.0;
  }
  const float ratio = ScreenRatio(w, h, physical_w, physical_h);
  return ratio > kEnlargedDesktopRatio ? static_cast<double>(ratio) * kShareOfDesktopRatio
                                       : std::max(1.0, w / kDesignWidthPx);
}

void ApplyScaleFactor(const ScreenMetrics& screen) {
  const float ratio = ScreenRatio(screen.logical_width, screen.logical_height,
                                  screen.physical_width, screen.physical_height);
  const double scale = ComputeScaleFactor(screen.logical_width, screen.logical_height,
                                          screen.physical_width, screen.physical_height);
  qDebug() << "main"
           << "dpi=" << ratio << "scale=" << scale;
  qputenv("QT_SCALE_FACTOR", QString::number(scale, 'g', 6).toLatin1());
}

QString ResolveInstallRoot(const QString& exe_dir) {
  QString parent = QDir(QDir(exe_dir).filePath(QStringLiteral(".."))).absolutePath();
  for (const QString& candidate : {parent, exe_dir}) {
    if (QFileInfo::exists(QDir(candidate).filePath(kRegularFontFile))) {
      return candidate;
    }
  }
  // The two bytes before "using" are meant: they are a dash in another code page than UTF-8, and
  // whoever searches logs for this line searches for them.
  qWarning() << "[Tevron] install root heuristic: missing" << kRegularFontFile << "in" << exe_dir
             << "and" << parent << "\xA1\xAA using parent of exe dir:" << parent;
  return parent;
}

int LoadApplicationFont(const QString& path, const QString& label) {
  const QFileInfo file(path);
  if (!file.isFile()) {
    qWarning() << "[Tevron] Font file missing:" << qUtf8Printable(label)
               << "absolutePath:" << file.absoluteFilePath();
    return -1;
  }
  const int id = QFontDatabase::addApplicationFont(path);
  if (id < 0) {
    qWarning() << "[Tevron] addApplicationFont failed:" << qUtf8Printable(label)
               << "absolutePath:" << file.absoluteFilePath() << "id:" << id;
  }
  return id;
}

QFont ApplicationFont(const QString& root) {
  const QString regular_path = QDir(root).filePath(kRegularFontFile);
  // Only registered: Qt picks it by itself wherever the family is asked for in bold.
  LoadApplicationFont(QDir(root).filePath(kBoldFontFile), QStringLiteral("Roboto-Bold"));
  const int regular = LoadApplicationFont(regular_path, QStringLiteral("Roboto-Regular"));
  QFont font;
  if (regular < 0) {
    return font;
  }
  const QStringList families = QFontDatabase::applicationFontFamilies(regular);
  if (families.isEmpty()) {
    qWarning() << "[Tevron] applicationFontFamilies empty for"
               << "Roboto-Regular absolutePath:" << QFileInfo(regular_path).absoluteFilePath();
    return font;
  }
  font.setFamily(families.first());
  return font;
}

QIcon ApplicationIcon(const QString& root) {
  const QFileInfo file(QDir(root).filePath(kIconFile));
  if (!file.exists()) {
    qWarning() << "[Tevron] Window icon missing absolutePath:" << file.absoluteFilePath();
    return QIcon();
  }
  return QIcon(file.filePath());
}

void StartDeviceLog() {
  const QString path = DeviceLogPath();
  if (!kavel::lidar::Logger::GetInstance().SetFile(path.toStdString())) {
    qWarning() << "[Tevron] Device log cannot be written:" << path;
  }
}

QString ModulePvArgument(int argc, char** argv) {
  const QLatin1String option(kModelOption);
  for (int i = 1; i < argc; ++i) {
    const QString argument = QString::fromLatin1(argv[i]);
    if (argument.startsWith(option)) {
      return argument.mid(option.size());
    }
  }
  return QString();
}
