// Frames and checksums in memory.

#include <benchmark/benchmark.h>

#include <vector>

#include "CmxClient/cmx_parser.h"
#include "Wire/crc32.h"

namespace kavel::lidar {
namespace {

using Bytes = std::vector<uint8_t>;

// Arguments: protocol version, payload size.
void EncodeFrame(benchmark::State& state) {
  CmxParser parser(static_cast<uint8_t>(state.range(0)));
  const Bytes payload(static_cast<size_t>(state.range(1)), 0x5A);
  Bytes frame;
  for (auto _ : state) {
    parser.CmxEncode(payload, frame, 0x2A);
    benchmark::DoNotOptimize(frame.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(frame.size()));
}
BENCHMARK(EncodeFrame)->ArgsProduct({{1, 2}, {16, 1024}});

// A four-byte value out of a page of values; version 2 has no positions and hands out the page.
void DecodeValue(benchmark::State& state) {
  CmxParser parser(static_cast<uint8_t>(state.range(0)));
  const Bytes page(256, 0x5A);
  Bytes value;
  for (auto _ : state) {
    parser.CmxStreamDecode(2, 0, page, 100, 4, value);
    benchmark::DoNotOptimize(value.data());
  }
}
BENCHMARK(DecodeValue)->Arg(1)->Arg(2);

void FilePieces(benchmark::State& state) {
  CmxParser parser(1);
  const Bytes file(1 << 20, 0x5A);
  for (auto _ : state) {
    std::vector<Bytes> frames;
    parser.CmxFilestreamSend(file, frames, 0x83);
    benchmark::DoNotOptimize(frames.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(file.size()));
}
BENCHMARK(FilePieces)->Unit(benchmark::kMillisecond);

template <uint32_t (*kCrc)(const uint8_t*, size_t)>
void Checksum(benchmark::State& state) {
  const Bytes bytes(static_cast<size_t>(state.range(0)), 0x5A);
  for (auto _ : state) {
    benchmark::DoNotOptimize(kCrc(bytes.data(), bytes.size()));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Checksum<Crc32Mpeg2>)->Arg(1024)->Arg(1 << 20);
BENCHMARK(Checksum<Crc32Ieee>)->Arg(1024)->Arg(1 << 20);

}  // namespace
}  // namespace kavel::lidar
