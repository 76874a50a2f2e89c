#pragma once

#include <cstdint>
#include <vector>

#include "variables/var_info.h"

/// How a value that the device measures of itself moves: a slow drift, noise and now and then a
/// spike around the value that it starts from; a whole number of 32 bits and more without a unit is
/// a counter and goes up. The same seed gives the same values at the same second.
class Measurement {
 public:
  /// With the seed 0 everything stands still.
  explicit Measurement(uint32_t seed = 0) : seed_(seed) {}

  /// The bytes of `var` at a second of the up-time; `start` has those that it starts from. They
  /// never leave the range of the type. Of anything but a number: `start`.
  std::vector<uint8_t> At(uint32_t second, const VarInfo& var,
                          const std::vector<uint8_t>& start) const;

 private:
  const uint32_t seed_;
};
