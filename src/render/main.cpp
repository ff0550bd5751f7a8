#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "base/wait_for_task.h"
#include "export/video_exporter.h"
#include "platform/picture_threads.h"
#include "platform/unique_fd.h"
#include "render/interruption.h"
#include "render/render_job.h"
#include "render/render_options.h"

using namespace brisklet;
using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { Done = 0, Failed = 1, WrongUse = 2, Interrupted = 130 };

/// One line whatever a file name or a scene may hold.
QString asLine(QString text) {
  for (QChar& unit : text) {
    if (unit.category() == QChar::Other_Control) unit = u' ';
  }
  return text;
}

/// Standard error, for the program's own words.
std::FILE* const said = stderr;

/// Whether as many files can be open as fonts, threads and the movie need: where the fonts cannot be,
/// pictures would go without.
bool mayOpenFiles() {
  std::array<UniqueFd, 24> files;
  for (UniqueFd& file : files) file = UniqueFd(open("/dev/null", O_RDONLY | O_CLOEXEC));
  return static_cast<bool>(files.back());
}

/// Libraries remark there on photos and on memory, beside the error that they return: what matters of it
/// becomes the one line. Sanitizers, and a library that aborts, write past this.
void silenceLibraries() {
  if (std::FILE* nowhere = std::fopen("/dev/null", "we")) stderr = nowhere;
}

/// What the program says on standard error: messages, and on a terminal a line of progress.
class Console {
 public:
  explicit Console(bool showsProgress) : showsProgress_(showsProgress) {}

  void message(const QString& text) {
    clearProgress();
    write(u"brisklet-render: "_s + asLine(text) + u'\n');
  }

  void progress(const QString& name, qint64 framesDone, qint64 frames) {
    const int percent = static_cast<int>(framesDone * 100 / frames);
    if (!showsProgress_ || percent == percent_) return;
    percent_ = percent;
    write(u"\r\033[K%1  %2 %"_s.arg(asLine(name)).arg(percent, 3));
  }

  void clearProgress() {
    if (percent_ >= 0) write(u"\r\033[K"_s);
    percent_ = -1;
  }

 private:
  static void write(const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), said);
  }

  bool showsProgress_;
  int percent_ = -1;
};

/// Only one of these ends the other jobs of a batch.
ExitStatus run(const RenderJob& job, Console& console, const std::stop_source& stop) {
  const auto progress = [&console, &job](qint64 framesDone, qint64 frames) {
    console.progress(job.movie, framesDone, frames);
  };
  try {
    waitForTask(runRenderJob(job, progress, stop.get_token()));
    console.clearProgress();
    return Done;
  } catch (const ExportCancelled&) {
    const QString& output = !job.movie.isEmpty()        ? job.movie
                            : !job.soundtrack.isEmpty() ? job.soundtrack
                                                        : job.still;
    console.message(u"interrupted; %1 is not complete"_s.arg(output));
    return Interrupted;
  } catch (const Error& error) {
    console.message(error.text());
  } catch (const std::bad_alloc&) {
    console.message(u"%1: there is not enough memory"_s.arg(job.scene));
  } catch (const std::exception& error) {
    console.message(u"%1: %2"_s.arg(job.scene, QString::fromLocal8Bit(error.what())));
  }
  return Failed;
}

/// Who closes standard input, output or error would have the movie's file take its number, and messages
/// written into it.
void openStandardStreams() {
  while (true) {
    const int fd = open("/dev/null", O_RDWR);
    if (fd > STDERR_FILENO) close(fd);
    if (fd < 0 || fd > STDERR_FILENO) return;
  }
}

/// Threads have an ordinary stack, also where the limit of the first one's (`ulimit -s`) is tiny or immense.
void setStacks() {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return;
  pthread_attr_setstacksize(&attributes, 4 << 20);
  pthread_setattr_default_np(&attributes);
  pthread_attr_destroy(&attributes);
}

/// What a library says before it gives up (no descriptor is left, no thread) becomes the one line; its
/// remarks about the machine (no runtime directory, an odd locale) mean nothing to who asked for a movie.
void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtFatalMsg) return;
  static std::atomic_flag isSaid;
  while (isSaid.test_and_set()) pause();  // another thread has said it, and ends the program
  Console(false).message(text);
  std::_Exit(Failed);
}

/// Memory ended where no job can be given up for it: in a library, or before the first.
[[noreturn]] void endInASentence() {
  std::fputs("brisklet-render: there is not enough memory\n", said);
  std::_Exit(Failed);
}

/// Throws `UsageError` for a name that is not UTF-8: it would come to mean another file.
QStringList argumentsOf(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i) {
    arguments.append(QFile::decodeName(argv[i]));
    if (QFile::encodeName(arguments.last()) != argv[i])
      throw UsageError(u"the name \"%1\" is not valid UTF-8"_s.arg(arguments.last()));
  }
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  openStandardStreams();
  silenceLibraries();
  setStacks();
  std::set_terminate(endInASentence);
  if (!mayOpenFiles()) {
    Console(false).message(u"too many files are open"_s);
    return Failed;
  }
  // It draws into images only, and needs neither a display nor the desktop's event loop.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_NO_GLIB", "1");
  // A file that meets a size limit, and a reader that went away, are errors of the write and not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  qInstallMessageHandler(handleQtMessage);
  // Qt would take options such as -style for its own, so it sees none.
  int qtArgc = 1;
  QGuiApplication application(qtArgc, argv);

  RenderOptions options;
  try {
    options = parseRenderOptions(argumentsOf(argc, argv));
  } catch (const UsageError& error) {
    Console(false).message(error.text() + u" (--help shows the usage)"_s);
    return WrongUse;
  }
  if (options.help || options.version) {
    const QString text = options.help ? renderUsage() : u"brisklet-render " BRISKLET_VERSION "\n"_s;
    std::fputs(text.toLocal8Bit().constData(), said);
    return Done;
  }

  if (!startPictureThreads()) {
    Console(false).message(u"the system allows no more threads"_s);
    std::_Exit(Failed);
  }
  Console console(!options.quiet && isatty(STDERR_FILENO) != 0);
  if (!options.into.isEmpty() && !QDir().mkpath(options.into)) {
    console.message(u"%1: the directory cannot be made"_s.arg(options.into));
    return Failed;
  }
  std::stop_source stop;
  const Interruption interruption(stop);
  ExitStatus status = Done;
  for (const RenderJob& job : options.jobs) {
    const ExitStatus outcome = run(job, console, stop);
    if (outcome == Interrupted) return Interrupted;
    if (outcome == Failed) status = Failed;
  }
  return status;
}
