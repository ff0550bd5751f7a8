#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <csignal>
#include <cstdio>
#include <new>

#include "base/wait_for_task.h"
#include "export/video_exporter.h"
#include "render/interruption.h"
#include "render/render_job.h"
#include "render/render_options.h"

using namespace brisklet;
using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { Done = 0, Failed = 1, WrongUse = 2, Interrupted = 130 };

/// What the program says on standard error: messages, and on a terminal a line of progress.
class Console {
 public:
  explicit Console(bool showsProgress) : showsProgress_(showsProgress) {}

  void message(const QString& text) {
    clearProgress();
    QString line = text;
    // A message is one line whatever a file name or a scene may hold.
    for (QChar& unit : line) {
      if (unit.category() == QChar::Other_Control) unit = u' ';
    }
    write(u"brisklet-render: "_s + line + u'\n');
  }

  void progress(const QString& name, qint64 framesDone, qint64 frames) {
    const int percent = static_cast<int>(framesDone * 100 / frames);
    if (!showsProgress_ || percent == percent_) return;
    percent_ = percent;
    write(u"\r\033[K%1  %2 %"_s.arg(name).arg(percent, 3));
  }

  void clearProgress() {
    if (percent_ >= 0) write(u"\r\033[K"_s);
    percent_ = -1;
  }

 private:
  static void write(const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
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
    console.message(u"interrupted; %1 is not complete"_s.arg(job.movie));
    return Interrupted;
  } catch (const Error& error) {
    console.message(error.text());
  } catch (const std::bad_alloc&) {
    console.message(u"%1: there is not enough memory"_s.arg(job.scene));
  }
  return Failed;
}

}  // namespace

int main(int argc, char** argv) {
  // It draws into images only, and needs no display.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // A file that meets a size limit, and a reader that went away, are errors of the write and not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  // Qt's remarks about the machine (no runtime directory, an odd locale) mean nothing to who asked for a
  // movie.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  // Qt would take options such as -style for its own, so it sees none.
  int qtArgc = 1;
  QGuiApplication application(qtArgc, argv);

  RenderOptions options;
  try {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) arguments.append(QFile::decodeName(argv[i]));
    options = parseRenderOptions(arguments);
  } catch (const UsageError& error) {
    Console(false).message(error.text() + u" (--help shows the usage)"_s);
    return WrongUse;
  }
  if (options.help || options.version) {
    const QString text = options.help ? renderUsage() : u"brisklet-render " BRISKLET_VERSION "\n"_s;
    std::fputs(text.toLocal8Bit().constData(), stderr);
    return Done;
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
