#pragma once

#include <QGuiApplication>

/// For targets that draw or decode pictures: they need an application, which needs no display.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "fuzz";
  static char* argv[] = {name, nullptr};
  new QGuiApplication(argc, argv);  // for good: Qt objects go before what they need when a process exits
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  return 0;
}
