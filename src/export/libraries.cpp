#include "export/libraries.h"

#include "movie/codec_messages.h"

#include <QImageReader>
#include <QLoggingCategory>
#include <csignal>

using namespace Qt::StringLiterals;

namespace brisklet {

void setUpLibraries(Remarks remarks) {
  // A file that meets a size limit, and a reader or service that went away, are errors of the write.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  qSetMessagePattern(u"%{time process} %{category}: %{message}"_s);
  QLoggingCategory::setFilterRules(
      remarks == Remarks::Told ? u"brisklet.*=true"_s : u"*.debug=false\n*.info=false\n*.warning=false"_s);
  logCodecMessages();
  // 300 megapixels of 8 bits a channel, or half as many of 16. By default a phone's photo can be too large.
  QImageReader::setAllocationLimit(1145);
}

}  // namespace brisklet
