#include <QApplication>

#include "export/video_exporter.h"
#include "lockscreen/wallpaper_store.h"
#include "platform/audio_output.h"
#include "platform/file_manager.h"
#include "platform/image_decoder.h"
#include "sound/notification_sound_player.h"
#include "studio/brisklet_app.h"

#include <csignal>

int main(int argc, char** argv) {
  using namespace brisklet;

  // A file that meets a size limit, and a service that went away, are errors of the write and not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  QApplication application(argc, argv);
  BriskletApp::setUp(application);

  NotificationSoundPlayer tones(makeAudioOutput);
  const std::unique_ptr<FileManager> fileManager = makeFileManager();
  StudioView::Services services;
  services.tones = &tones;
  services.fileManager = fileManager.get();
  services.exportMovie = [](SequenceDocument document, QString path, StudioView::Progress progress,
                            std::stop_token stop) {
    return VideoExporter::exportMovie(std::move(document), std::move(path), std::move(progress),
                                      std::move(stop));
  };
  services.decodeImage = [](const QString& path) { return decodeImageFile(path); };
  services.imageSuffixes = readableImageSuffixes();
  services.saveWallpaper = WallpaperStore::save;

  BriskletApp app(services, makeFilePanels);
  app.openWindow();
  return QApplication::exec();
}
