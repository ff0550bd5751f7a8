#include "desktop/audio_output.h"
#include "desktop/file_manager.h"
#include "drawing/image_decoder.h"
#include "export/libraries.h"
#include "export/video_exporter.h"
#include "lockscreen/wallpaper_store.h"
#include "sound/notification_sound_player.h"
#include "studio/brisklet_app.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>

namespace {

/// Says in one sentence why there is no window. The library's own words advise to install the program anew.
[[noreturn]] void exitWithoutWindow() {
  const char* reason = "there is no display: neither WAYLAND_DISPLAY nor DISPLAY is set";
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
    reason = "what QT_QPA_PLATFORM asks for is not installed, or does not run";
  else if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
    reason = "please install the package qt6-wayland";
  else if (!qEnvironmentVariableIsEmpty("DISPLAY"))
    reason = "please install the package libqt6gui6, or start the display that DISPLAY names";
  std::fprintf(stderr, "brisklet: no window can be opened: %s.\n", reason);
  std::_Exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace brisklet;

  setUpLibraries(Remarks::Silent);
  // Until there is an application, all that Qt gives up for is that it cannot open windows.
  const QtMessageHandler former =
      qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString&) {
        if (type == QtFatalMsg) exitWithoutWindow();
      });
  QApplication application(argc, argv);
  qInstallMessageHandler(former);
  BriskletApp::setUp(application);

  NotificationSoundPlayer tones(makeAudioOutput);
  const std::unique_ptr<FileManager> fileManager = makeFileManager();
  StudioView::Services services;
  services.tones = &tones;
  services.fileManager = fileManager.get();
  services.exportMovie = [](SequenceDocument document, MovieStyle style, QString path,
                            StudioView::Progress progress, std::stop_token stop) {
    return VideoExporter::exportMovie(std::move(document), style, std::move(path), std::move(progress),
                                      std::move(stop));
  };
  services.decodeImage = [](const QString& path) { return decodeImageFile(path); };
  services.imageSuffixes = readableImageSuffixes();
  services.saveWallpaper = WallpaperStore::save;

  BriskletApp app(services, makeFilePanels);
  app.openWindow();
  return QApplication::exec();
}
