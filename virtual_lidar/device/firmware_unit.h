#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "device/firmware_image.h"
#include "device/image_intake.h"
#include "faults/fault_modes.h"
#include "variables/model_traits.h"
#include "wire/message.h"

/// The firmware of the device and both ways of getting another one in. The application has two
/// partitions: the one that is not active takes the new image, and the restart changes over. The
/// other components of a Kiva change at the restart, too. Until then, what was accepted waits.
class FirmwareUnit {
 public:
  /// Of a component that has no partitions.
  struct Component {
    std::string number;
    std::optional<std::string> waiting;  ///< the number that the restart brings
  };

  FirmwareUnit(const std::string& model, SerialFamily family);

  /// Tells what the active partition holds; with `both`, the other one as well.
  void SetRunning(const FirmwareVersion& version, bool both);

  /// Answers what has to do with firmware; nothing for any other request. The faults that strike a
  /// piece are struck here.
  std::optional<DeviceReply> Answer(const DeviceRequest& request, bool upgrade_mode,
                                    FaultBox* faults, std::string* what);

  /// What was streamed by halves is dropped.
  void LeaveUpgradeMode();
  /// Starts what waits and drops half an image.
  void Restart();
  /// As losing power does: drops half an image, and what waits goes on waiting.
  void PowerCycle();

  /// True once after anything that a dump shows has changed.
  bool TakeChanged() { return std::exchange(changed_, false); }

  const FirmwareVersion& running() const { return partitions_[active_]; }
  size_t active() const { return active_; }
  /// 0 is partition A, 1 is B.
  const FirmwareVersion& partition(size_t index) const { return partitions_[index]; }
  bool application_waits() const { return application_waits_; }
  bool half_image() const { return intake_.is_half(); }
  /// By type; empty for models that have an application alone.
  const std::map<uint8_t, Component>& components() const { return components_; }

 private:
  struct Verdict {
    uint8_t return_code = kAccepted;
    std::vector<uint8_t> payload;
    Aftermath aftermath = Aftermath::kNone;
  };

  Verdict TakePiece(const DeviceRequest& request);
  Verdict Stream(const DeviceRequest& request, bool upgrade_mode);
  Verdict EndStream(const DeviceRequest& request, bool upgrade_mode);
  bool IsStreamCommand(const DeviceRequest& request) const;
  bool SomethingWaits() const;
  void Keep(const std::optional<FirmwareHeader>& whole);

  bool is_serial_;
  std::array<FirmwareVersion, 2> partitions_;
  size_t active_ = 0;
  bool application_waits_ = false;
  std::map<uint8_t, Component> components_;
  ImageIntake intake_;
  bool changed_ = false;
};

/// "TMB_FPGA" and so on, as the wire numbers them.
const char* FirmwareComponentName(uint8_t component);
