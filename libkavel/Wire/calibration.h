#pragma once

#include <cstdint>
#include <vector>

namespace kavel::lidar {

/// The direction in which a channel of a Lumo looks, as measured in the factory.
struct ChannelAngles {
  int16_t elevation_cdeg = 0;  ///< hundredths of a degree, up is positive
  int16_t azimuth_cdeg = 0;    ///< hundredths of a degree, clockwise seen from above
};

/// The calibration of a Lumo as it travels and as it is stored; docs/wire-formats.md has the
/// layout. At most 255 channels.
std::vector<uint8_t> BuildCalibration(const std::vector<ChannelAngles>& channels);

/// Whether these bytes are a whole calibration with the right checksum.
bool IsCalibration(const std::vector<uint8_t>& bytes);

}  // namespace kavel::lidar
