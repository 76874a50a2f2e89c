#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "CmxClient/serial_client.h"
#include "Wire/firmware_stream.h"

namespace kavel::lidar {

/// How long the device has for an answer, beside what the line needs.
inline constexpr uint32_t kStreamAnswerMs = 2000;

/// Sends one firmware image over a serial line to a device in upgrade mode, as
/// docs/wire-formats.md ("Firmware stream") tells, and returns when the device has taken it.
///
/// `component_type` is a FirmwareComponent; `then` is what the device does afterwards. `*progress`
/// (may be null) goes on from what it holds by the KiB that the device has acknowledged, a begun
/// one counted whole.
///
/// Returns 0, or a reason of command_sender.h: the lidar's return code; kBadArgument for an empty
/// image, one above kStreamMaxImage or an unknown component, with nothing sent; kNotConnected when
/// the line is not open, or was lost or interrupted meanwhile, which ends it at once;
/// kSendIncomplete when the port takes no more bytes; kNoReply when one request had no answer in
/// four attempts of `answer_ms` each. With all KiB acknowledged kNoReply and kNotConnected leave it
/// open whether the device has taken the image: only the very last answer was missing.
///
/// Runs on the caller's thread and has the line for itself meanwhile: see SerialClient::Lease.
/// Takes no memory beside that of a few pieces.
int32_t StreamFirmware(SerialClient& line, const std::vector<uint8_t>& image,
                       uint8_t component_type, AfterImage then, std::atomic<int>* progress,
                       uint32_t answer_ms = kStreamAnswerMs);

}  // namespace kavel::lidar
