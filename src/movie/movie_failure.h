#pragma once

#include "base/error.h"

namespace brisklet {

/// Why a movie cannot be made: the cause alone, which ends the sentence that names the file.
class MovieFailure : public Error {
 public:
  using Error::Error;
};

/// Passes on what a function of libav returned; throws `MovieFailure` if it is an error. The step reads
/// "encoding a picture".
int checked(int result, const char* step);

/// The same for functions that give no reason.
void require(bool succeeded, const char* step);

/// The same for functions that hand out an object, or nothing when memory is short.
template <typename T>
T* checked(T* object, const char* step) {
  require(object != nullptr, step);
  return object;
}

}  // namespace brisklet
