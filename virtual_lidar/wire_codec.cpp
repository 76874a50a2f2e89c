#include "wire_codec.h"

std::vector<DeviceRequest> WireCodec::Feed(const uint8_t* data, size_t size, TimePoint now) {
  if (now - last_byte_ > kHalfFrameLife) waiting_.clear();
  last_byte_ = now;
  waiting_.insert(waiting_.end(), data, data + size);

  std::vector<DeviceRequest> requests;
  size_t done = 0;
  while (done < waiting_.size()) {
    const size_t taken = Take(waiting_.data() + done, waiting_.size() - done, &requests);
    if (taken == 0) break;
    done += taken;
  }
  waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(done));
  return requests;
}
