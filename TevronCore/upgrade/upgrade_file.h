#pragma once

#include <QUrl>
#include <cstdint>
#include <string>
#include <vector>

#include "variables/model_traits.h"

/// The largest file that is taken for firmware.
inline constexpr uint64_t kMaxUpgradeFileSize = uint64_t{64} << 20;

/// Whether a model takes its firmware as a package of components, and not as one image.
inline bool TakesPackages(ConnectType connect_type, SerialFamily family) {
  return family == SerialFamily::kKiva && connect_type == kSerialCmx;
}

/// What a file that the user chose turned out to be.
struct UpgradeFileFacts {
  struct Component {
    std::string name;
    uint32_t size_bytes = 0;  ///< as the package lists it
  };

  std::string name;  ///< without its folder
  uint64_t size_bytes = 0;
  std::string problem;                ///< why it cannot be used, a sentence; "" when it can
  std::vector<Component> components;  ///< of a package, in the order of its header
};

/// Looks at the file under `url`: at its size, and with `package` at the components that it holds.
/// Whether a lidar takes the firmware is the lidar's to say. Reads a package whole.
UpgradeFileFacts InspectUpgradeFile(const QUrl& url, bool package);

/// A file read whole. Throws nothing; any file may be asked for.
struct UpgradeFile {
  std::string name;  ///< without its folder
  uint64_t size_bytes = 0;
  bool opened = false;
  std::string problem;         ///< why `bytes` are not to be used, a sentence; "" when they are
  std::vector<uint8_t> bytes;  ///< empty when there is a problem
};
UpgradeFile ReadUpgradeFile(const QUrl& url);
