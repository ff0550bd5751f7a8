#include <unistd.h>

#include <QApplication>

#include "export/video_exporter.h"
#include "lockscreen/wallpaper_store.h"
#include "platform/audio_output.h"
#include "platform/file_manager.h"
#include "platform/image_decoder.h"
#include "platform/picture_threads.h"
#include "platform/session_bus.h"
#include "platform/spare_memory.h"
#include "sound/notification_sound_player.h"
#include "studio/brisklet_app.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

/// What a library says before it gives up (no display, no descriptor left) is the program's last word.
void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  std::fprintf(stderr, "brisklet: %s\n", text.simplified().toLocal8Bit().constData());
  if (type == QtFatalMsg) std::_Exit(EXIT_FAILURE);
}

/// Memory ended where nothing is left that could be given up.
[[noreturn]] void endInASentence() {
  std::fputs("brisklet: there is not enough memory to go on.\n", stderr);
  std::_Exit(EXIT_FAILURE);
}

/// Where memory ends within a library, that may take the program with it.
void sayLastWord(int number) {
  constexpr char sentence[] = "brisklet: it cannot go on, for want of memory or by a fault of its own.\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, sentence, sizeof sentence - 1);
  std::signal(number, SIG_DFL);
  std::raise(number);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace brisklet;

  std::set_terminate(endInASentence);
  for (const int number : {SIGSEGV, SIGBUS, SIGABRT, SIGTRAP}) std::signal(number, sayLastWord);
  qInstallMessageHandler(handleQtMessage);
  // A file that meets a size limit, and a service that went away, are errors of the write and not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  leaveSilentSessionBus();
  StudioApplication application(argc, argv);
  if (!startPictureThreads()) {
    std::fputs("brisklet: the system allows no more threads.\n", stderr);
    std::_Exit(EXIT_FAILURE);
  }
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
  // With the first control Qt starts a thread of its own, and does not look whether it could; nor whether
  // there was room for what the window is painted in.
  requireSpareMemory();
  app.openWindow();
  requireSpareMemory();
  return QApplication::exec();
}
