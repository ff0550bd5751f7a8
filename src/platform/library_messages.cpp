#include "platform/library_messages.h"

#include <QMessageLogContext>
#include <QString>
#include <QtGlobal>

namespace brisklet {

namespace {

QtMessageHandler handlerBefore = nullptr;
thread_local int quietDepth = 0;

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  const bool isGrave = type == QtCriticalMsg || type == QtFatalMsg;
  if (!isGrave && (quietDepth > 0 || message.startsWith(QLatin1String("  OpenType support missing for"))))
    return;
  if (handlerBefore) handlerBefore(type, context, message);
}

}  // namespace

void dropFontSearchMessages() {
  static const bool installed = [] {
    handlerBefore = qInstallMessageHandler(handleMessage);
    return true;
  }();
  Q_UNUSED(installed)
}

QuietLibraries::QuietLibraries() {
  dropFontSearchMessages();
  ++quietDepth;
}

QuietLibraries::~QuietLibraries() {
  --quietDepth;
}

}  // namespace brisklet
