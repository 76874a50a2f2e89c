#include "CmxClient/file_transfer.h"

#include "Wire/file_piece.h"

namespace kavel::lidar {
namespace {

constexpr uint8_t kLongCommand = 0xFF;

}  // namespace

int32_t TransferFile(CommandSender& sender, const std::vector<uint8_t>& data, uint32_t code,
                     bool long_command, std::atomic<int>* progress, int32_t* error,
                     uint32_t timeout_ms) {
  int32_t ignored = 0;
  int32_t& reason = error != nullptr ? *error : ignored;
  const uint8_t cmd = long_command ? kLongCommand : static_cast<uint8_t>(code);
  const size_t count = FilePieceCount(data.size());
  reason = count == 0 ? kBadArgument : 0;
  int32_t outcome = count == 0 ? -1 : 0;
  std::vector<uint8_t> answer;
  for (size_t number = 1; number <= count && outcome == 0; ++number) {
    if (progress != nullptr) {
      *progress = static_cast<int>(number);
    }
    const std::vector<uint8_t> piece = BuildFilePiece(data, number);
    outcome = sender.QueryWithin(timeout_ms, piece, answer, cmd, &reason);
  }
  return outcome;
}

}  // namespace kavel::lidar
