// The libFuzzer program: TEVRON_FUZZ_TARGET in the environment names the target.

#include <cstring>

#include "fuzz/fuzz_targets.h"

namespace {

const FuzzTarget& Chosen() {
  const char* const name = std::getenv("TEVRON_FUZZ_TARGET");
  for (const FuzzTarget& target : kFuzzTargets) {
    if (name != nullptr && std::strcmp(target.name, name) == 0) {
      return target;
    }
  }
  std::fputs("TEVRON_FUZZ_TARGET names no target\n", stderr);
  std::exit(2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const FuzzTarget& target = Chosen();
  target.run({data, size});
  return 0;
}
