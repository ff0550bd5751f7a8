#pragma once

#include <unistd.h>

#include <cstdint>
#include <span>
#include <utility>

namespace brisklet {

/// Owns a file descriptor; -1 is none.
class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() {
    if (fd_ >= 0) ::close(fd_);
  }

  [[nodiscard]] int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_ = -1;
};

/// Writes all of `data` to that place of a file. Returns 0 or the `errno` that ended it.
[[nodiscard]] int writeAt(int fd, std::span<const uint8_t> data, int64_t offset);

}  // namespace brisklet
