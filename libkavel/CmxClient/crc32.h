#pragma once

// The name by which other programs include it.
#include "Wire/crc32.h"
