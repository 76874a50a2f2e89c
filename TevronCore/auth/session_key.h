#pragma once

#include <cstdint>

/// The two constants of the mixing routine that a deployment shares with its lidars' firmware.
struct MixConstants {
  uint32_t c1 = 0;
  uint32_t c2 = 0;
};

/// Mixes a challenge's checksum with a mask word into a session key: a linear feedback shift
/// register, seeded with the checksum and stepped a number of times that checksum, mask word and
/// constants decide. The result must agree bit for bit with the lidar's firmware.
uint32_t MixSessionKey(uint32_t crc, uint32_t maskword, const MixConstants& constants);
