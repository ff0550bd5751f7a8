#include "movie/codec_messages.h"

extern "C" {
#include <libavutil/log.h>
}

#include "base/logging.h"

#include <cstdarg>

namespace brisklet {

namespace {

void log(void* context, int level, const char* format, va_list arguments) {
  if (level > AV_LOG_WARNING) return;
  char line[1024];
  int printsPrefix = 1;
  av_log_format_line(context, level, format, arguments, line, sizeof line, &printsPrefix);
  qCWarning(movieLog, "%s", QByteArray(line).trimmed().constData());
}

}  // namespace

void logCodecMessages() {
  av_log_set_callback(log);
}

}  // namespace brisklet
