#pragma once

#include <exception>
#include <string>

namespace brisklet {

/// Why a movie cannot be made, in words that follow `Could not write "movie.mp4": `, without a full stop.
class MovieFailure : public std::exception {
 public:
  explicit MovieFailure(std::string cause) : cause_(std::move(cause)) {}

  [[nodiscard]] const char* what() const noexcept override { return cause_.c_str(); }

 private:
  std::string cause_;
};

/// The cause behind an `errno` value, in a person's words where the value is one that people meet.
[[nodiscard]] std::string systemCause(int errorNumber);

/// Passes on what a function of libav returned; throws `MovieFailure` if it is an error. The step reads
/// "encoding a picture".
int checked(int result, const char* step);

/// The same for functions that hand out an object, or nothing when memory is short.
template <typename T>
T* checked(T* object, const char* step);

/// The same for functions that give no reason.
void require(bool succeeded, const char* step);

[[noreturn]] void failOutOfMemory(const char* step);

template <typename T>
T* checked(T* object, const char* step) {
  if (object == nullptr) failOutOfMemory(step);
  return object;
}

}  // namespace brisklet
