#include "base/unique_fd.h"

#include <cerrno>

namespace brisklet {

int writeAt(int fd, std::span<const uint8_t> data, int64_t offset) {
  while (!data.empty()) {
    const ssize_t count = ::pwrite(fd, data.data(), data.size(), offset);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    data = data.subspan(static_cast<size_t>(count));
    offset += count;
  }
  return 0;
}

}  // namespace brisklet
