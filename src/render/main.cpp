#include "base/system_cause.h"
#include "export/event_loop.h"
#include "export/libraries.h"
#include "render/interruption.h"
#include "render/render_job.h"
#include "render/render_options.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>

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

/// Some libraries remark there on photos, beside the error that they return, and ask nobody.
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

/// Makes a folder and those above it that are missing. What of them stays empty is taken away again.
class MadeFolder {
 public:
  explicit MadeFolder(const QString& path) {
    if (path.isEmpty()) return;
    for (QFileInfo missing(QDir::cleanPath(path)); !missing.exists(); missing.setFile(missing.path()))
      made_.append(missing.filePath());
    std::error_code failure;
    std::filesystem::create_directories(QFile::encodeName(path).toStdString(), failure);
    if (failure) throw Error(u"%1: it cannot be made: %2"_s.arg(path, systemCause(failure.value())));
  }
  ~MadeFolder() {
    for (const QString& path : made_) QDir().rmdir(path);
  }
  MadeFolder(const MadeFolder&) = delete;
  MadeFolder& operator=(const MadeFolder&) = delete;

 private:
  QStringList made_;  // the innermost first
};

/// Only an interruption ends the other jobs of a batch.
ExitStatus run(const RenderJob& job, const QStringList& photos, Console& console,
               const std::stop_source& stop) {
  const auto progress = [&console, &job](qint64 framesDone, qint64 frames) {
    console.progress(job.movie, framesDone, frames);
  };
  try {
    waitForTask(runRenderJob(job, photos, progress, stop.get_token()));
    console.clearProgress();
    return Done;
  } catch (const ExportCancelled&) {
    console.message(u"interrupted; %1 was not made"_s.arg(job.outputs().last()));
    return Interrupted;
  } catch (const Error& error) {
    console.message(error.text());
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
  RenderOptions options;
  try {
    options = parseRenderOptions(argumentsOf(argc, argv));
  } catch (const UsageError& error) {
    Console(false).message(error.text() + u" (--help shows the usage)"_s);
    return WrongUse;
  }
  if (options.help || options.version) {
    const QString text =
        options.help ? renderUsage() : u"brisklet-render %1\n"_s.arg(QLatin1StringView(BRISKLET_VERSION));
    std::fputs(text.toLocal8Bit().constData(), said);
    return Done;
  }

  setUpLibraries(options.verbose ? Remarks::Told : Remarks::Silent);
  // It draws into images only, and needs neither a display nor the desktop's event loop.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_NO_GLIB", "1");
  // Qt would take options such as -style for its own, so it sees none.
  int qtArgc = 1;
  const QGuiApplication application(qtArgc, argv);
  if (!options.verbose && !qEnvironmentVariableIsSet("QT_LOGGING_RULES")) silenceLibraries();

  Console console(!options.quiet && !options.verbose && isatty(STDERR_FILENO) != 0);
  try {
    const MadeFolder folder(options.into);
    const QStringList photos = options.jobs.size() > 1 ? photosOf(options.jobs) : QStringList();
    std::stop_source stop;
    const Interruption interruption(stop);
    ExitStatus status = Done;
    for (const RenderJob& job : options.jobs) {
      const ExitStatus outcome = run(job, photos, console, stop);
      if (outcome == Interrupted) return Interrupted;
      if (outcome == Failed) status = Failed;
    }
    return status;
  } catch (const Error& error) {
    console.message(error.text());
    return Failed;
  }
}
