#pragma once

#include "fuzz/fuzz_input.h"

/// Bytes of a serial line, put together from the input: noise, and frames whose checksums a fuzzer
/// would never hit upon. At most `most` bytes.
Bytes SerialBytes(FuzzInput* input, size_t most);
