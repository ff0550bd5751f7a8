#pragma once

#include <QLoggingCategory>

namespace brisklet {

// What the program does, step by step: silent unless QT_LOGGING_RULES="brisklet.*=true" or --verbose asks.
Q_DECLARE_LOGGING_CATEGORY(drawingLog)
Q_DECLARE_LOGGING_CATEGORY(exportLog)
Q_DECLARE_LOGGING_CATEGORY(movieLog)
Q_DECLARE_LOGGING_CATEGORY(soundLog)
Q_DECLARE_LOGGING_CATEGORY(studioLog)

}  // namespace brisklet
