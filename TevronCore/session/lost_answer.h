#pragma once

#include <cstdint>
#include <string>

#include "CmxClient/command_sender.h"

/// What to tell the user beside the failure of a command that changes something: what is to be done
/// when it was sent and `error` leaves open whether the lidar carried it out; else "".
inline std::string LostAnswerRemedy(int32_t error) {
  if (!kavel::lidar::MayBeCarriedOut(error)) {
    return "";
  }
  return "The lidar may have carried it out all the same: see what it shows now, after connecting "
         "again where the link is lost.";
}
