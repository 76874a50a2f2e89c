#include "fuzz/fuzz_targets.h"
#include "upgrade/upgrade_package.h"

namespace {

constexpr size_t kFpgaPreamble = 1024;

void CheckComponent(const Bytes& package, const UpgradeComponent& component, const char* name) {
  const size_t data_size = package.size() - kUpgradeHeaderSize;
  Require(uint64_t{component.offset} + component.size <= data_size, "a component lies in the file");
  Bytes image;
  Require(ExtractComponent(package, component, name, image, [](const std::string&) {}),
          "a component of a sound package can be taken out");
  Require(image.size() == component.size || image.size() + kFpgaPreamble == component.size,
          "a component has its size");
  Require(
      std::equal(image.rbegin(), image.rend(),
                 std::reverse_iterator(package.begin() + static_cast<std::ptrdiff_t>(
                                                             kUpgradeHeaderSize + component.offset +
                                                             component.size))),
      "a component has its bytes");
}

}  // namespace

void FuzzUpgradePackage(FuzzInput input) {
  const Bytes package = input.Rest();
  UpgradePackageHeader header;
  int reasons = 0;
  const auto count = [&reasons](const std::string& reason) { reasons += reason.empty() ? 2 : 1; };
  const bool sound = ParseUpgradePackage(package, header, count);
  Require(reasons == (sound || package.size() < kUpgradeHeaderSize ? 0 : 1),
          "a package is sound or has one reason");
  uint64_t all = 0;
  for (size_t i = 0; i < kUpgradeComponents; ++i) {
    const UpgradeComponent& component = header.components[i];
    const char* const name = UpgradeComponentName(static_cast<UpgradeComponentIndex>(i));
    if (sound && component.present) {
      CheckComponent(package, component, name);
      all += component.size;
    } else {
      Bytes image = {1};
      if (!ExtractComponent(package, component, name, image, count)) {
        Require(image == Bytes{1}, "a failure leaves the image as it was");
      }
    }
  }
  Require(!sound || (all > 0 && all + kUpgradeHeaderSize <= package.size()),
          "components do not overlap");
}
