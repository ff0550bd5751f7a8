#include "base/system_cause.h"
#include "export/libraries.h"
#include "render/batch.h"
#include "render/console.h"
#include "render/interruption.h"
#include "render/render_job.h"
#include "render/render_options.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <filesystem>
#include <memory>
#include <system_error>

using namespace brisklet;
using namespace Qt::StringLiterals;

namespace {

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

/// What every process does that draws. It draws into images only, and needs neither a display nor the
/// desktop's event loop.
class DrawingProcess {
 public:
  DrawingProcess(bool isVerbose, char** argv) {
    // Each movie has threads of its own, and each of their heaps would keep what it had.
    ::mallopt(M_ARENA_MAX, 2);
    setUpLibraries(isVerbose ? Remarks::Told : Remarks::Silent);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_NO_GLIB", "1");
    // Qt would take options such as -style for its own, so it sees none.
    argc_ = 1;
    application_ = std::make_unique<QGuiApplication>(argc_, argv);
    if (!isVerbose && !qEnvironmentVariableIsSet("QT_LOGGING_RULES")) silenceLibraries();
  }

 private:
  int argc_;
  std::unique_ptr<QGuiApplication> application_;
};

ExitStatus runAlone(const RenderJob& job, Console& console) {
  const auto progress = [&console, &job](qint64 framesDone, qint64 frames) {
    console.progress(u"%1  %2 %"_s.arg(job.movie).arg(framesDone * 100 / frames, 3));
  };
  LockScreenCache cache;
  std::stop_source stop;
  const Interruption interruption(stop);
  const JobResult result = attempt(job, {}, progress, stop.get_token(), cache);
  console.clearProgress();
  if (!result.message.isEmpty()) console.message(result.message);
  if (result.outcome == JobOutcome::Interrupted) return Interrupted;
  return result.outcome == JobOutcome::Failed ? Failed : Done;
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
    say(text);
    return Done;
  }

  Console console(!options.quiet && !options.verbose && isatty(STDERR_FILENO) != 0);
  try {
    if (options.into.isEmpty()) {
      const DrawingProcess process(options.verbose, argv);
      return runAlone(options.jobs.first(), console);
    }
    const MadeFolder folder(options.into);
    return runBatch(options, console,
                    [&] { return std::make_shared<DrawingProcess>(options.verbose, argv); });
  } catch (const Error& error) {
    console.message(error.text());
    return Failed;
  }
}
