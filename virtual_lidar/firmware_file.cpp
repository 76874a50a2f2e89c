#include "firmware_file.h"

#include <QDate>
#include <QString>
#include <algorithm>
#include <iterator>
#include <utility>

#include "Wire/big_endian.h"
#include "Wire/firmware_stream.h"
#include "files/whole_file.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr char kPackageMagic[] = {'K', 'V', 'O', 'T'};
constexpr size_t kPackageHeaderSize = 56;
constexpr size_t kPackageFlagsAt = 8;
constexpr size_t kPackageEntriesAt = 12;
// Stands in front of a gate array's image and is not for the device.
constexpr size_t kGateArrayPreamble = 1024;
constexpr size_t kMostParameters = size_t{16} * 1024;
// "BMB " stands in front of it where a Kiva shows it, in 16 bytes.
constexpr size_t kMaxKivaVersionSize = 12;

// In the order of the package.
constexpr kavel::lidar::FirmwareComponent kPackaged[] = {
    kavel::lidar::kApplicationImage, kavel::lidar::kApplicationImage, kavel::lidar::kBaseBoardFpga,
    kavel::lidar::kTopBoardFpga, kavel::lidar::kTopBoardParameters};

bool IsGateArray(uint8_t component) {
  return component == kavel::lidar::kBaseBoardFpga || component == kavel::lidar::kTopBoardFpga;
}

Bytes MakePackage(FirmwareHeader header, size_t image_size) {
  Bytes entries;
  Bytes images;
  uint8_t flags = 0;
  for (size_t i = 0; i < std::size(kPackaged); ++i) {
    header.component = kPackaged[i];
    const bool is_small = header.component == kavel::lidar::kTopBoardParameters;
    const Bytes image =
        MakeImage(header, is_small ? std::min(image_size, kMostParameters) : image_size);
    const size_t offset = images.size();
    images.resize(offset + (IsGateArray(header.component) ? kGateArrayPreamble : 0), 0xFF);
    images.insert(images.end(), image.begin(), image.end());
    kavel::lidar::AppendLittleEndian32(entries, static_cast<uint32_t>(offset));
    kavel::lidar::AppendLittleEndian32(entries, static_cast<uint32_t>(images.size() - offset));
    flags = static_cast<uint8_t>(flags | 1U << i);
  }
  Bytes package(std::begin(kPackageMagic), std::end(kPackageMagic));
  package.resize(kPackageEntriesAt);
  package[kPackageFlagsAt] = flags;
  package.insert(package.end(), entries.begin(), entries.end());
  package.resize(kPackageHeaderSize);
  package.insert(package.end(), images.begin(), images.end());
  return package;
}

// Why no firmware can be made; "" when it can.
std::string ProblemWith(const ConfigParser& table, const std::string& model, SerialFamily family,
                        const std::string& version) {
  if (!IsVersionNumber(version)) {
    return "\"" + version +
           "\" is no version: one to four numbers from 0 to 255 with dots "
           "between them";
  }
  if (family == SerialFamily::kKiva && version.size() > kMaxKivaVersionSize) {
    return "\"" + version + "\" is too long: a Kiva shows 12 characters of a version";
  }
  if (model.size() > kMaxImageModelSize) {
    return "the name \"" + model + "\" is too long for an image: 16 characters at most";
  }
  const auto& variables = table.InTableOrder();
  const bool shows_version =
      family != SerialFamily::kNone ||
      std::any_of(variables.begin(), variables.end(),
                  [](const VarInfo* var) { return var->var_name == "SWVER_YMD"; });
  return shows_version ? ""
                       : "model \"" + model +
                             "\" has no firmware: its table has no variable "
                             "\"SWVER_YMD\" to show one";
}

}  // namespace

Bytes MakeFirmware(const std::string& model, SerialFamily family, const FirmwareVersion& version,
                   size_t image_size) {
  const FirmwareHeader header = {model, version, kavel::lidar::kApplicationImage};
  return family == SerialFamily::kKiva ? MakePackage(header, image_size)
                                       : MakeImage(header, image_size);
}

bool WriteFirmwareFile(const ConfigParser& table, const std::string& model, SerialFamily family,
                       const std::string& version, size_t image_size, const std::string& path,
                       std::string* error) {
  *error = ProblemWith(table, model, family, version);
  if (!error->empty()) {
    return false;
  }
  const std::string today = QDate::currentDate().toString(Qt::ISODate).toStdString();
  const Bytes bytes = MakeFirmware(model, family, {version, today}, image_size);
  const FileOutcome outcome = WriteWholeFile(path, BytesOf(bytes));
  *error = outcome.written ? "" : "cannot write " + PathText(path) + ": " + outcome.reason;
  return outcome.written;
}
