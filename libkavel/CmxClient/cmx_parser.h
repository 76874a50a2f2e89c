#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Wire/cmx_header.h"

/// The codecs of command frames ("CMX"): Wire/cmx_header.h has the header.
namespace kavel::lidar {

/// Builds and reads frames of one version. The getters read the held header: the version's template
/// until `CmxEncode` is called, then the header of the last frame that was encoded. One thread at a
/// time, save for `CmxStreamDecode`, which touches no state. Nothing throws for bad input. The
/// order of the virtual operations is fixed.
class GeneralCmxParser {
 public:
  explicit GeneralCmxParser(const CmxHeaderLayout& layout);
  virtual ~GeneralCmxParser() = default;

  /// Replaces `frame` by the header for `cmd` followed by `payload`. Always true.
  virtual bool CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                         uint8_t cmd) = 0;

  /// Cuts the bytes of one value out of a response's payload `data`; see the versions.
  virtual bool CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data,
                               int32_t start, int32_t length, std::vector<uint8_t>& result) = 0;

  /// Appends one encoded frame to `frames` for each numbered, checksummed piece of `data`. This one
  /// knows no pieces: it appends nothing and returns true.
  virtual bool CmxFilestreamSend(const std::vector<uint8_t>& data,
                                 std::vector<std::vector<uint8_t>>& frames, uint8_t cmd);

  virtual uint8_t GetHeaderIdentifier1();
  virtual uint8_t GetHeaderIdentifier2();
  virtual uint32_t GetHeaderSize();
  virtual uint8_t GetReturnCode();
  virtual uint8_t GetCmd();
  virtual uint32_t GetPayloadLen();

 protected:
  void EncodeFrame(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame, uint8_t cmd);

 private:
  const CmxHeaderLayout& layout_;
  std::array<uint8_t, kMaxCmxHeaderSize> header_{};
};

class Cmx_1_0_parser : public GeneralCmxParser {
 public:
  Cmx_1_0_parser() : GeneralCmxParser(kCmxHeader1) {}

  bool CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                 uint8_t cmd) override;

  /// `result` becomes the `length` bytes of `data` from `start`. False, with `result` left as it
  /// was, when they do not lie inside `data`. `cmd` and `fill` are ignored.
  bool CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data, int32_t start,
                       int32_t length, std::vector<uint8_t>& result) override;

  /// Pieces of `kFilePieceDataSize` bytes, the last one shorter; none for empty `data`. False, with
  /// the frames so far kept, when a frame cannot be encoded.
  bool CmxFilestreamSend(const std::vector<uint8_t>& data,
                         std::vector<std::vector<uint8_t>>& frames, uint8_t cmd) override;
};

class Cmx_2_0_parser : public GeneralCmxParser {
 public:
  Cmx_2_0_parser() : GeneralCmxParser(kCmxHeader2) {}

  bool CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame,
                 uint8_t cmd) override;

  /// Ignores `start` and `length` and goes by `cmd`: odd up to 9 takes the whole of `data` (true),
  /// even up to 8 takes it and reports false unless `data` is empty (true), 10 appends `fill` and
  /// reports false unless there is nothing to do (true), anything else does nothing (true).
  bool CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data, int32_t start,
                       int32_t length, std::vector<uint8_t>& result) override;
};

/// The codec of one connection. With a version other than 1 and 2 there is no codec behind it:
/// every call returns false or 0.
class CmxParser {
 public:
  explicit CmxParser(uint8_t version);
  virtual ~CmxParser();

  bool CmxEncode(const std::vector<uint8_t>& payload, std::vector<uint8_t>& frame, uint8_t cmd);
  bool CmxStreamDecode(uint8_t cmd, uint8_t fill, const std::vector<uint8_t>& data, int32_t start,
                       int32_t length, std::vector<uint8_t>& result);
  bool CmxFilestreamSend(const std::vector<uint8_t>& data,
                         std::vector<std::vector<uint8_t>>& frames, uint8_t cmd);

  uint8_t GetHeaderIdentifier1();
  uint8_t GetHeaderIdentifier2();
  uint32_t GetHeaderSize();
  uint8_t GetReturnCode();
  uint8_t GetCmd();
  uint32_t GetPayloadLen();

 private:
  uint8_t version_;
  std::unique_ptr<GeneralCmxParser> parser_;
};

}  // namespace kavel::lidar
