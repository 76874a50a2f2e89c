#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The package that upgrades a serial-attached lidar: a header, and behind it the firmware of up to
/// five components. docs/wire-formats.md has the layout.
///
/// Everything here is pure, works for any bytes, and may be called on any thread. Nothing throws.

inline constexpr size_t kUpgradeHeaderSize = 56;

/// The components in the order of the header; the numbers are also their bits in its flags.
enum UpgradeComponentIndex : size_t {
  kBmbAppA,   ///< application of the base board, first partition
  kBmbAppB,   ///< application of the base board, second partition
  kBmbFpga,   ///< gate array of the base board
  kTmbFpga,   ///< gate array of the top board
  kTmbParam,  ///< parameters of the top board
  kUpgradeComponents,
};

/// "BMB_APP_A", "BMB_APP_B", "BMB_FPGA", "TMB_FPGA" or "TMB_PARAM".
const char* UpgradeComponentName(UpgradeComponentIndex component);

/// Where a component lies, in bytes behind the header. All zero when it is absent.
struct UpgradeComponent {
  uint32_t offset = 0;
  uint32_t size = 0;
  bool present = false;
};

struct UpgradePackageHeader {
  uint32_t word = 0;  ///< carried along, of no meaning here
  uint8_t flags = 0;  ///< bit i set: component i is present
  std::array<UpgradeComponent, kUpgradeComponents> components;
};

/// Reads the header of a package. True when every component that it announces lies inside the file
/// and none overlaps another; they may touch. Otherwise false, with one reason handed to `log`
/// (none for a file shorter than a header) and `header` in an unspecified state.
bool ParseUpgradePackage(const std::vector<uint8_t>& package, UpgradePackageHeader& header,
                         const std::function<void(const std::string&)>& log);

/// Cuts a component that is called `name` out of the package. The image of a gate array of more
/// than 1024 bytes loses its first 1024, which are not for the device. False, with a reason handed
/// to `log` and `out` untouched, when it does not lie inside the file.
bool ExtractComponent(const std::vector<uint8_t>& package, const UpgradeComponent& component,
                      const std::string& name, std::vector<uint8_t>& out,
                      const std::function<void(const std::string&)>& log);
