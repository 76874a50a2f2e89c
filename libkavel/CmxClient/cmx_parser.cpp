#include "CmxClient/cmx_parser.h"

#include <algorithm>
#include <iostream>

#include "Wire/big_endian.h"
#include "Wire/file_piece.h"

namespace kavel::lidar {

GeneralCmxParser::GeneralCmxParser(const CmxHeaderLayout& layout) : layout_(layout) {
  header_[0] = layout.identifier_1;
  header_[1] = layout.identifier_2;
  header_[2] = layout.fixed_byte_2;
}

bool GeneralCmxParser::CmxFilestreamSend(const std::vector<uint8_t>& /*data*/,
                                         std::vector<std::vector<uint8_t>>& /*frames*/,
                                         uint8_t /*cmd*/) {
  return true;
}

uint8_t GeneralCmxParser::GetHeaderIdentifier1() { return header_[0]; }

uint8_t GeneralCmxParser::GetHeaderIdentifier2() { return header_[1]; }

uint32_t GeneralCmxParser::GetHeaderSize() { return static_cast<uint32_t>(layout_.size); }

uint8_t GeneralCmxParser::GetReturnCode() { return header_[layout_.return_code_at]; }

uint8_t GeneralCmxParser::GetCmd() { return header_[layout_.command_at]; }

uint32_t GeneralCmxParser::GetPayloadLen() {
  return ReadBigEndian32(header_.data() + layout_.payload_length_at);
}

void GeneralCmxParser::EncodeFrame(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                                   uint8_t cmd) {
  frame = BuildCmxFrame(layout_, cmd, 0, payload);
  std::copy_n(frame.begin(), layout_.size, header_.begin());
}

bool Cmx_1_0_parser::CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                               uint8_t cmd) {
  EncodeFrame(payload, frame, cmd);
  return true;
}

bool Cmx_1_0_parser::CmxStreamDecode(uint8_t /*cmd*/, uint8_t /*fill*/,
                                     const std::vector<uint8_t>& data, int32_t start,
                                     int32_t length, std::vector<uint8_t>& result) {
  const int64_t end = int64_t{start} + length;
  if (start < 0 || length < 0 || end > static_cast<int32_t>(data.size())) {
    return false;
  }
  result.assign(data.begin() + start, data.begin() + end);
  return true;
}

bool Cmx_1_0_parser::CmxFilestreamSend(const std::vector<uint8_t>& data,
                                       std::vector<std::vector<uint8_t>>& frames, uint8_t cmd) {
  const size_t count = FilePieceCount(data.size());
  for (size_t number = 1; number <= count; ++number) {
    std::vector<uint8_t> frame;
    if (!CmxEncode(BuildFilePiece(data, number), frame, cmd)) {
      std::cout << "GeneralCmxParser::CmxFilestreamSend pack frame failed!\n";
      return false;
    }
    frames.push_back(std::move(frame));
  }
  return true;
}

bool Cmx_2_0_parser::CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                               uint8_t cmd) {
  EncodeFrame(payload, frame, cmd);
  return true;
}

// The commands of this version number the steps of a stream, and false asks for the next one. That
// even steps and the filling step report false although they stored something is meant.
bool Cmx_2_0_parser::CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data,
                                     int32_t /*start*/, int32_t /*length*/,
                                     std::vector<uint8_t>& result) {
  constexpr uint8_t kLastStep = 9;
  constexpr uint8_t kFillStep = 10;
  if (cmd == kFillStep) {
    if (data.empty() && fill == 0) {
      return true;
    }
    result.push_back(fill);
    return false;
  }
  const bool is_step = cmd >= 1 && cmd <= kLastStep;
  const bool is_even_step = is_step && cmd % 2 == 0;
  if (is_even_step && data.empty()) {
    return true;
  }
  if (is_step) {
    result = data;
  }
  if (is_even_step) {
    return false;
  }
  std::cout << "Cmx_2_0_parser::CmxStreamDecode success!\n";
  return true;
}

CmxParser::CmxParser(uint8_t version) : version_(version) {
  if (version_ == 1) {
    parser_ = std::make_unique<Cmx_1_0_parser>();
  } else if (version_ == 2) {
    parser_ = std::make_unique<Cmx_2_0_parser>();
  }
}

CmxParser::~CmxParser() = default;

bool CmxParser::CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                          uint8_t cmd) {
  return parser_ && parser_->CmxEncode(payload, frame, cmd);
}

bool CmxParser::CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data,
                                int32_t start, int32_t length, std::vector<uint8_t>& result) {
  return parser_ && parser_->CmxStreamDecode(cmd, fill, data, start, length, result);
}

bool CmxParser::CmxFilestreamSend(const std::vector<uint8_t>& data,
                                  std::vector<std::vector<uint8_t>>& frames, uint8_t cmd) {
  return parser_ && parser_->CmxFilestreamSend(data, frames, cmd);
}

uint8_t CmxParser::GetHeaderIdentifier1() { return parser_ ? parser_->GetHeaderIdentifier1() : 0; }

uint8_t CmxParser::GetHeaderIdentifier2() { return parser_ ? parser_->GetHeaderIdentifier2() : 0; }

uint32_t CmxParser::GetHeaderSize() { return parser_ ? parser_->GetHeaderSize() : 0; }

uint8_t CmxParser::GetReturnCode() { return parser_ ? parser_->GetReturnCode() : 0; }

uint8_t CmxParser::GetCmd() { return parser_ ? parser_->GetCmd() : 0; }

uint32_t CmxParser::GetPayloadLen() { return parser_ ? parser_->GetPayloadLen() : 0; }

}  // namespace kavel::lidar
