#include "console/byte_flow.h"

namespace {

// Clients write to their sink on the thread that runs the exchange.
thread_local int mutes_of_this_thread = 0;

}  // namespace

void ByteFlowSink::WriteLine(const std::string& line) {
  if (!on_ || mutes_of_this_thread > 0) {
    return;
  }
  if (line.rfind("SEND: ", 0) == 0) {
    ++command_count_;
  }
  report_.LogLine(line, LogType::kByteFlow);
}

ByteFlowMute::ByteFlowMute() { ++mutes_of_this_thread; }
ByteFlowMute::~ByteFlowMute() { --mutes_of_this_thread; }
