#include "upgrade/upgrade_package.h"

#include <algorithm>

#include "Wire/big_endian.h"

using kavel::lidar::ReadLittleEndian32;

namespace {

constexpr std::array<uint8_t, 4> kMagic = {'K', 'V', 'O', 'T'};
constexpr size_t kWordAt = 4;
constexpr size_t kFlagsAt = 8;
constexpr size_t kComponentsAt = 12;
constexpr size_t kComponentEntrySize = 8;
constexpr unsigned kUnknownFlags = 0xE0;
constexpr uint32_t kFpgaPreamble = 1024;

constexpr std::array<const char*, kUpgradeComponents> kNames = {
    "BMB_APP_A", "BMB_APP_B", "BMB_FPGA", "TMB_FPGA", "TMB_PARAM"};

bool LiesInside(const UpgradeComponent& component, size_t data_size) {
  return component.offset <= data_size && component.size <= data_size - component.offset;
}

bool Overlap(std::vector<UpgradeComponent> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const auto& a, const auto& b) { return a.offset < b.offset; });
  return std::adjacent_find(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) {
           return b.offset - a.offset < a.size;
         }) != ranges.end();
}

void ReadComponents(const std::vector<uint8_t>& package, UpgradePackageHeader& header) {
  for (size_t i = 0; i < kUpgradeComponents; ++i) {
    if ((header.flags >> i & 1) != 0) {
      const uint8_t* entry = package.data() + kComponentsAt + i * kComponentEntrySize;
      header.components[i] = {ReadLittleEndian32(entry), ReadLittleEndian32(entry + 4), true};
    }
  }
}

/// What is wrong with where the components lie; "" for nothing.
std::string FaultOf(const UpgradePackageHeader& header, size_t data_size) {
  std::vector<UpgradeComponent> ranges;
  for (size_t i = 0; i < kUpgradeComponents; ++i) {
    const UpgradeComponent& component = header.components[i];
    if (!component.present) {
      continue;
    }
    const std::string who = std::string("Component ") + kNames[i];
    if (component.size == 0) {
      return who + " size is zero";
    }
    if (!LiesInside(component, data_size)) {
      return who + " is out of file range";
    }
    ranges.push_back(component);
  }
  if (ranges.empty()) {
    return "No component found in package";
  }
  return Overlap(std::move(ranges)) ? "Component overlap" : "";
}

}  // namespace

const char* UpgradeComponentName(UpgradeComponentIndex component) { return kNames[component]; }

bool ParseUpgradePackage(const std::vector<uint8_t>& package, UpgradePackageHeader& header,
                         const std::function<void(const std::string&)>& log) {
  if (package.size() < kUpgradeHeaderSize) {
    return false;
  }
  if (!std::equal(kMagic.begin(), kMagic.end(), package.begin())) {
    log("Invalid OTA package magic");
    return false;
  }
  header = {};
  header.word = ReadLittleEndian32(package.data() + kWordAt);
  header.flags = package[kFlagsAt];
  if ((header.flags & kUnknownFlags) != 0) {
    log("Invalid OTA component flags");
    return false;
  }
  ReadComponents(package, header);
  const std::string fault = FaultOf(header, package.size() - kUpgradeHeaderSize);
  if (!fault.empty()) {
    log(fault);
  }
  return fault.empty();
}

bool ExtractComponent(const std::vector<uint8_t>& package, const UpgradeComponent& component,
                      const std::string& name, std::vector<uint8_t>& out,
                      const std::function<void(const std::string&)>& log) {
  if (package.size() < kUpgradeHeaderSize) {
    log("Component " + name + " package too small");
    return false;
  }
  if (!LiesInside(component, package.size() - kUpgradeHeaderSize)) {
    log("Component " + name + " data out of range");
    return false;
  }
  const bool is_fpga = name == kNames[kBmbFpga] || name == kNames[kTmbFpga];
  // Meant: the tools that build such an image put a kilobyte of their own in front of it.
  const uint32_t skipped = is_fpga && component.size > kFpgaPreamble ? kFpgaPreamble : 0;
  const uint8_t* begin = package.data() + kUpgradeHeaderSize + component.offset;
  out.assign(begin + skipped, begin + component.size);
  return true;
}
