#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "variables/config_parser.h"
#include "variables/model_traits.h"
#include "wire/message.h"

/// What the device hands out whole: its logs and its calibration. Layouts are in
/// docs/wire-formats.md ("Downloads").
///
/// The same device hands out the same bytes each time.
class LogStore {
 public:
  /// A log's size unless told otherwise, and the most that there can be.
  static constexpr uint32_t kUsualSize = 64 * 1024;
  static constexpr uint32_t kMaxSize = 64 * 1024 * 1024;
  /// The most of a log that one frame of a serial line carries.
  static constexpr uint32_t kMaxOnSerialLine = 60 * 1024;

  /// Logs of `size` bytes each for what `table` offers. `family` kLumo has a calibration, too.
  LogStore(const ConfigParser& table, SerialFamily family, uint32_t size);

  /// Answers a request for a log, a part of one, or the calibration; nothing for any other.
  std::optional<DeviceReply> Answer(const DeviceRequest& request, std::string* what) const;

 private:
  struct Log {
    std::vector<uint8_t> request;
    bool in_parts = false;  ///< a byte with the number of the part follows the request
    std::string name;
  };

  void Offer(const VarInfo& var, bool in_parts);
  std::vector<uint8_t> Content(const DeviceRequest& request, size_t log, uint8_t part) const;

  std::vector<Log> logs_;
  SerialFamily family_;
  std::vector<uint8_t> records_;  ///< of every log, but for what tells them apart
};
