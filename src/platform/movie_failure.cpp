#include "platform/movie_failure.h"

extern "C" {
#include <libavutil/error.h>
}

#include <cerrno>
#include <system_error>

namespace brisklet {

namespace {

/// Empty for a number that has no words of our own.
std::string plainCause(int errorNumber) {
  switch (errorNumber) {
    case ENOSPC:
      return "no space left on the device";
    case EDQUOT:
      return "the disk quota is used up";
    case EFBIG:
      return "the file would grow larger than this system allows";
    case EACCES:
    case EPERM:
      return "no permission to write there";
    case EROFS:
      return "the disk is read-only";
    case ENOENT:
      return "its folder does not exist";
    case ENOTDIR:
      return "a part of its path is not a folder";
    case EISDIR:
      return "a folder of that name is in its place";
    case EEXIST:
      return "a file of that name already exists";
    case ENAMETOOLONG:
      return "the name is too long";
    case ELOOP:
      return "its path leads in a circle of links";
    case EMFILE:
    case ENFILE:
      return "too many files are open";
    case EIO:
      return "the device reported an error";
    case ENOMEM:
      return "not enough memory";
    case EAGAIN:
      return "the system allows no more threads";
    default:
      return {};
  }
}

}  // namespace

std::string systemCause(int errorNumber) {
  std::string cause = plainCause(errorNumber);
  return cause.empty() ? std::generic_category().message(errorNumber) : cause;
}

int checked(int result, const char* step) {
  if (result >= 0) return result;
  if (std::string cause = plainCause(AVUNERROR(result)); !cause.empty()) throw MovieFailure(std::move(cause));
  char reason[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(result, reason, sizeof reason);
  throw MovieFailure(std::string(step) + " failed (" + reason + ")");
}

void require(bool succeeded, const char* step) {
  if (!succeeded) throw MovieFailure(std::string(step) + " failed");
}

void failOutOfMemory(const char* step) {
  throw MovieFailure(std::string("not enough memory for ") + step);
}

}  // namespace brisklet
