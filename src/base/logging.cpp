#include "base/logging.h"

namespace brisklet {

Q_LOGGING_CATEGORY(drawingLog, "brisklet.drawing", QtWarningMsg)
Q_LOGGING_CATEGORY(exportLog, "brisklet.export", QtWarningMsg)
Q_LOGGING_CATEGORY(movieLog, "brisklet.movie", QtWarningMsg)
Q_LOGGING_CATEGORY(soundLog, "brisklet.sound", QtWarningMsg)
Q_LOGGING_CATEGORY(studioLog, "brisklet.studio", QtWarningMsg)

}  // namespace brisklet
