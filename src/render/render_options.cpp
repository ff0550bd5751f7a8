#include "render/render_options.h"

#include "model/catalogue.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QThread>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// Positive infinity for "end".
double momentMs(const QString& text) {
  if (text == u"end"_s) return std::numeric_limits<double>::infinity();
  bool isNumber = false;
  const double seconds = text.toDouble(&isNumber);
  if (!isNumber || !std::isfinite(seconds) || seconds < 0)
    throw UsageError(u"--at takes a number of seconds or \"end\", not \"%1\""_s.arg(text));
  return seconds * 1000;
}

/// To Qt a name that begins with a colon is a part of the program, and no file.
QString asFile(const QString& name) {
  return name.startsWith(u':') ? u"./"_s + name : name;
}

QSize pageOf(const QString& text) {
  const QStringList sides = text.split(u'x');
  bool isWidth = false, isHeight = false;
  const QSize size(sides.value(0).toInt(&isWidth), sides.value(1).toInt(&isHeight));
  if (sides.size() != 2 || !isWidth || !isHeight || !isPage(size))
    throw UsageError(
        u"--page takes WIDTHxHEIGHT, both even and from %1 to %2, not \"%3\""_s.arg(shortestPageSide)
            .arg(longestPageSide)
            .arg(text));
  return size;
}

int workersOf(const QString& text) {
  constexpr int mostWorkers = 256;
  bool isNumber = false;
  const int workers = text.toInt(&isNumber);
  if (!isNumber || workers < 1 || workers > mostWorkers)
    throw UsageError(u"--jobs takes a number from 1 to %1, not \"%2\""_s.arg(mostWorkers).arg(text));
  return workers;
}

QList<RenderJob> jobsInto(const QString& directory, const QStringList& scenes) {
  if (scenes.isEmpty()) throw UsageError(u"--into needs at least one scene file"_s);
  QList<RenderJob> jobs;
  QMap<QString, QString> sceneOfMovie;
  for (const QString& scene : scenes) {
    if (scene == u"-"_s) throw UsageError(u"--into names movies after scene files, and \"-\" has no name"_s);
    const QString movie = QDir(directory).filePath(asFile(QFileInfo(scene).completeBaseName() + u".mp4"_s));
    if (sceneOfMovie.contains(movie))
      throw UsageError(u"%1 and %2 would both become %3"_s.arg(sceneOfMovie[movie], scene, movie));
    sceneOfMovie[movie] = scene;
    RenderJob job;
    job.scene = scene;
    job.movie = movie;
    jobs.append(job);
  }
  return jobs;
}

}  // namespace

QStringList RenderJob::outputs() const {
  QStringList asked{still, soundtrack, movie};
  asked.removeAll(QString());
  return asked;
}

RenderOptions parseRenderOptions(const QStringList& arguments) {
  const QCommandLineOption still(u"still"_s, {}, u"PICTURE"_s);
  const QCommandLineOption at(u"at"_s, {}, u"SECONDS"_s);
  const QCommandLineOption soundtrack(u"soundtrack"_s, {}, u"WAV"_s);
  const QCommandLineOption into(u"into"_s, {}, u"DIR"_s);
  const QCommandLineOption workers(u"jobs"_s, {}, u"N"_s);
  const QCommandLineOption keep(u"keep"_s);
  const QCommandLineOption motion(u"motion"_s);
  const QCommandLineOption page(u"page"_s, {}, u"WIDTHxHEIGHT"_s);
  const QCommandLineOption quiet(QStringList{u"q"_s, u"quiet"_s});
  const QCommandLineOption verbose(u"verbose"_s);
  const QCommandLineOption help(QStringList{u"h"_s, u"help"_s});
  const QCommandLineOption version(u"version"_s);
  QCommandLineParser parser;
  parser.addOptions(
      {still, at, soundtrack, into, workers, keep, motion, page, quiet, verbose, help, version});
  // The parser takes the first argument for the program's name.
  if (!parser.parse(QStringList(u"brisklet-render"_s) + arguments)) {
    QString reason = parser.errorText();
    if (reason.endsWith(u'.')) reason.chop(1);
    throw UsageError(reason.isEmpty() ? reason : reason.left(1).toLower() + reason.mid(1));
  }

  RenderOptions options;
  options.quiet = parser.isSet(quiet);
  options.verbose = parser.isSet(verbose);
  options.help = parser.isSet(help);
  options.version = parser.isSet(version);
  if (options.help || options.version) return options;

  for (const QCommandLineOption& option : {still, at, soundtrack, into, workers, page}) {
    if (parser.values(option).size() > 1)
      throw UsageError(u"--%1 is given more than once"_s.arg(option.names().first()));
    if (parser.isSet(option) && parser.value(option).isEmpty())
      throw UsageError(u"--%1 needs a value"_s.arg(option.names().first()));
  }
  QStringList files = parser.positionalArguments();
  if (files.contains(QString())) throw UsageError(u"a file name is empty"_s);
  for (QString& file : files) file = asFile(file);
  MovieStyle style;
  style.inMotion = parser.isSet(motion);
  if (parser.isSet(page)) style.page = pageOf(parser.value(page));
  if (parser.isSet(into)) {
    if (parser.isSet(still) || parser.isSet(at) || parser.isSet(soundtrack))
      throw UsageError(u"--into makes movies only: leave out --still, --at and --soundtrack"_s);
    options.into = asFile(parser.value(into));
    options.jobs = jobsInto(options.into, files);
    for (RenderJob& job : options.jobs) {
      job.style = style;
      job.keepsMovie = parser.isSet(keep);
    }
    options.workers = parser.isSet(workers) ? workersOf(parser.value(workers)) : QThread::idealThreadCount();
    return options;
  }

  if (parser.isSet(workers) || parser.isSet(keep)) throw UsageError(u"--jobs and --keep go with --into"_s);
  if (files.isEmpty()) throw UsageError(u"no scene file is given"_s);
  if (files.size() > 2)
    throw UsageError(u"there is one scene and one movie; to make several movies at once, use --into DIR"_s);
  if (parser.isSet(at) && !parser.isSet(still)) throw UsageError(u"--at goes with --still"_s);
  RenderJob job;
  job.scene = files[0];
  job.movie = files.value(1);
  job.style = style;
  job.still = asFile(parser.value(still));
  job.stillMs = momentMs(parser.isSet(at) ? parser.value(at) : u"end"_s);
  job.soundtrack = asFile(parser.value(soundtrack));
  if (job.outputs().contains(u"-"_s))
    throw UsageError(u"an output cannot go to standard output: \"-\" is no file"_s);
  if (job.outputs().isEmpty()) throw UsageError(u"nothing to make: name a movie, --still or --soundtrack"_s);
  options.jobs.append(job);
  return options;
}

QString renderUsage() {
  const auto idsOf = [](const auto& rows) {
    QStringList ids;
    for (const auto& row : rows) ids.append(row.id);
    return ids.join(u", "_s);
  };
  return uR"(Makes a movie of notifications arriving on a lock screen from a scene file.

Usage: brisklet-render SCENE.json [MOVIE.mp4] [--motion] [--page WIDTHxHEIGHT]
                       [--still PICTURE.png [--at SECONDS|end]]
                       [--soundtrack TONES.wav] [--quiet|--verbose]
       brisklet-render --into DIR [--jobs N] [--keep] [--motion] [--page WIDTHxHEIGHT]
                       [--quiet|--verbose] SCENE.json...

  SCENE.json            the scene; - reads standard input
  MOVIE.mp4             the movie, 1170 x 2532 at 30 frames per second with sound
  --motion              the cards move as on the studio's stage
  --page WIDTHxHEIGHT   the phone on a page of this size, such as 1080x1920, before its blurred wallpaper
  --still PICTURE.png   one picture of the scene, at its end unless --at says when
  --at SECONDS|end      the moment of the picture
  --soundtrack WAV      the movie's sound as a 16-bit stereo WAV file
  --into DIR            one movie per scene, named after it, in DIR
  --jobs N              N movies at once; without it one for each core
  --keep                leaves movies alone that are there and not older than their scene and its photo
  -q, --quiet           no progress, and no summary of --into
  --verbose             every step and its time, and what libraries remark
  -h, --help            this text
  --version             the program's version

Apps of a scene:        %1, custom
Its wallpapers:         %2, custom

A file that is there is replaced. Exit status: 0 everything was made, 1 something could not be made, 2 wrong
use, 130 interrupted.
)"_s.arg(idsOf(AppPreset::all()), idsOf(Studio::wallpapers()));
}

}  // namespace brisklet
