#include "movie/movie_failure.h"

extern "C" {
#include <libavutil/error.h>
}

#include "base/system_cause.h"

using namespace Qt::StringLiterals;

namespace brisklet {

int checked(int result, const char* step) {
  if (result >= 0) return result;
  constexpr int mostErrorNumbers = 4096;  // what is beyond is an error of libav's own
  if (const int number = AVUNERROR(result); number > 0 && number < mostErrorNumbers)
    throw MovieFailure(systemCause(number));
  char reason[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(result, reason, sizeof reason);
  throw MovieFailure(u"%1 failed (%2)"_s.arg(QString::fromUtf8(step), QString::fromUtf8(reason)));
}

void require(bool succeeded, const char* step) {
  if (!succeeded) throw MovieFailure(u"%1 failed"_s.arg(QString::fromUtf8(step)));
}

}  // namespace brisklet
