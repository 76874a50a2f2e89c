#pragma once

// The name by which other programs include it.
#include "Wire/serial_frame.h"
