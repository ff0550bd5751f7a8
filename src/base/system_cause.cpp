#include "base/system_cause.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace brisklet {

QString systemCause(int errorNumber) {
  switch (errorNumber) {
    case ENOSPC:
      return u"no space left on device"_s;
    case EDQUOT:
      return u"the disk quota is used up"_s;
    case EFBIG:
      return u"the file would grow larger than this system allows"_s;
    case EACCES:
    case EPERM:
      return u"no permission to write there"_s;
    case EROFS:
      return u"the disk is read-only"_s;
    case ENOENT:
      return u"its folder does not exist"_s;
    case ENOTDIR:
      return u"a part of its path is not a folder"_s;
    case EISDIR:
      return u"it is a directory"_s;
    case EEXIST:
      return u"a file of that name already exists"_s;
    case ENAMETOOLONG:
      return u"the name is too long"_s;
    case ELOOP:
      return u"its path leads in a circle of links"_s;
    case EIO:
      return u"the device reported an error"_s;
    default:
      return qt_error_string(errorNumber).toLower();
  }
}

}  // namespace brisklet
