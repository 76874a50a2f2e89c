#pragma once

#include <cstddef>
#include <cstdint>

/// The two 32-bit checksums of the wire. Both use the polynomial 0x04C11DB7 and start from
/// 0xFFFFFFFF; tables are computed at compile time and eight bytes are taken at a step
/// ("slicing-by-8", Kounavis and Berry 2005). Any thread. `data` may be null when `size` is 0.
namespace kavel::lidar {

/// CRC-32/MPEG-2: most significant bit first, no final XOR. "123456789" gives 0x0376E6E7.
uint32_t Crc32Mpeg2(const uint8_t* data, size_t size);

/// CRC-32 of IEEE 802.3, zip and PNG: reflected, final XOR 0xFFFFFFFF. "123456789" gives
/// 0xCBF43926.
uint32_t Crc32Ieee(const uint8_t* data, size_t size);

}  // namespace kavel::lidar
