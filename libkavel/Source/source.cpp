#include "Source/source.h"

#include "Log/logger.h"

namespace kavel::lidar {

void Source::Close() { KAVEL_LOG(kInfo, "Source::Close()"); }

}  // namespace kavel::lidar
