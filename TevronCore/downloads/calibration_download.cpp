#include "downloads/calibration_download.h"

#include <QFileInfo>
#include <string>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/device_commands.h"
#include "downloads/file_names.h"
#include "files/whole_file.h"

using kavel::lidar::CmxClient;
using kavel::lidar::kNotConnected;

int32_t DownloadCalibration(kavel::lidar::CommandSender* sender, const LinkState& state,
                            const QString& path, UserReport& report, QString* saved) {
  const auto fail = [&report](const std::string& text, int32_t reason) {
    report.Error(text);
    return reason;
  };
  if (!state.connected || sender == nullptr || state.upgrading) {
    return fail("lidar is not connected, or lidar is upgrade", kNotConnected);
  }
  if (path.isEmpty()) {
    return fail("LumoGetCorrection: empty local path", kNotConnected);
  }
  std::vector<uint8_t> calibration;
  if (const int32_t reason = GetCalibration(*sender, &calibration); reason != 0) {
    return fail("get calibration error, ret:" + CmxClient::ErrorText(reason), reason);
  }
  const QString target =
      QFileInfo(path).isDir() ? path + "/calibration_" + TimeNow("yyyyMMdd-hhmmss") + ".bin" : path;
  const FileOutcome file = WriteWholeFile(target.toStdString(), BytesOf(calibration));
  const std::string shown = PathText(target.toStdString());
  if (!file.written) {
    report.LogLine(shown + ": " + file.reason, LogType::kError);
    return fail("create calibration file fail, save correction file error", kNotConnected);
  }
  report.LogLine(std::to_string(calibration.size()) + " bytes saved as " + shown, LogType::kInfo);
  if (saved != nullptr) {
    *saved = target;
  }
  report.Success("calibration saved as " + shown);
  return 0;
}
