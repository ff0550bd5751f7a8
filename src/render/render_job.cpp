#include "render/render_job.h"

#include "base/output_file.h"
#include "base/unique_fd.h"
#include "export/event_loop.h"
#include "export/frame_pictures.h"
#include "export/video_exporter.h"
#include "model/document_json.h"
#include "sound/notification_sounds.h"
#include "sound/wav_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <exception>
#include <filesystem>
#include <system_error>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace brisklet {

namespace {

bool isStandardInput(const QString& scene) {
  return scene == u"-"_s;
}

QString sceneName(const QString& scene) {
  return isStandardInput(scene) ? u"standard input"_s : scene;
}

[[noreturn]] void failToRead(const QString& scene, int failure) {
  throw Error(u"%1: it cannot be read: %2"_s.arg(
      sceneName(scene), failure == EISDIR ? u"it is a directory"_s : qt_error_string(failure).toLower()));
}

/// At most one piece more than a document may have, so that the reader can tell that there is too much. A
/// pipe and a terminal may let their reader wait, which is done here, and not in a call that hears nothing
/// else.
QCoro::Task<QByteArray> readScene(QString scene, EventLoopTurn& turn) {
  UniqueFd opened;
  if (!isStandardInput(scene)) {
    opened = UniqueFd(::open(QFile::encodeName(scene).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!opened) failToRead(scene, errno);
  }
  const int fd = opened ? opened.get() : STDIN_FILENO;
  QByteArray bytes;
  QByteArray piece(1 << 16, '\0');
  while (bytes.size() <= maxDocumentBytes) {
    pollfd waiting{fd, POLLIN, 0};
    if (::poll(&waiting, 1, 0) == 0) {
      co_await turn.pause(10ms);
      continue;
    }
    const ssize_t count = ::read(fd, piece.data(), static_cast<size_t>(piece.size()));
    if (count == 0) break;
    if (count > 0)
      bytes.append(piece.constData(), count);
    else if (errno != EINTR && errno != EAGAIN)
      failToRead(scene, errno);
  }
  co_return bytes;
}

SequenceDocument decodeScene(const QByteArray& bytes, const QString& scene) {
  try {
    SequenceDocument document = decodeDocument(bytes);
    // A colon would lead to what is built into the program.
    if (document.wallpaperUrl.startsWith(u':')) document.wallpaperUrl.prepend(u"./"_s);
    // A scene that travels with its photo names it relative to itself.
    if (!document.wallpaperUrl.isEmpty() && !isStandardInput(scene))
      document.wallpaperUrl = QFileInfo(scene).dir().absoluteFilePath(document.wallpaperUrl);
    return document;
  } catch (const Error& error) {
    throw Error(sceneName(scene) + u": "_s + error.text());
  }
}

/// Refuses outputs that cannot be, or that would destroy an input or each other.
void checkOutputs(const RenderJob& job, const QString& photo, const Photos& photos) {
  const auto isAt = [](const fs::path& place, const QString& input) {
    std::error_code failure;
    return fs::equivalent(place, QFile::encodeName(input).toStdString(), failure);
  };
  std::vector<fs::path> taken;
  for (const QString& output : job.outputs()) {
    const fs::path place = outputPlace(output);
    const auto isHere = [&](const QString& input) { return isAt(place, input); };
    if (!isStandardInput(job.scene) && isHere(job.scene))
      throw Error(u"%1: it is the scene file, and would be overwritten"_s.arg(output));
    if (isHere(photo)) throw Error(u"%1: it is the scene's photo, and would be overwritten"_s.arg(output));
    struct stat there;
    if (::stat(place.c_str(), &there) == 0 && photos.contains({there.st_dev, there.st_ino}))
      throw Error(u"%1: it is the photo of another scene, and would be overwritten"_s.arg(output));
    if (std::find(taken.begin(), taken.end(), place) != taken.end())
      throw Error(u"%1: two outputs have this name"_s.arg(output));
    taken.push_back(place);
  }
}

QCoro::Task<> saveStill(const SequenceDocument& document, RenderJob job, EventLoopTurn& turn) {
  OutputFile file(job.still);
  LockScreenCache cache;
  const QImage picture = FramePictures(document, job.style, cache).at(job.stillMs);
  co_await turn.pause();
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  if (picture.isNull() || !QImageWriter(&buffer, "png").write(picture))
    throw couldNotWrite(job.still, u"there is not enough memory for the picture"_s);
  file.append(png);
  co_await turn.pause();
  file.commit();
}

QCoro::Task<> saveSoundtrack(const SequenceDocument& document, QString path, EventLoopTurn& turn) {
  constexpr qint64 pieceFrames = 1 << 20;
  const qint64 total = NotificationSounds::soundtrackFrames(document);
  OutputFile file(path);
  file.append(wavHeader(total * 4, 2));
  for (qint64 first = 0; first < total; first += pieceFrames) {
    file.append(NotificationSounds::stereoPCM(document, first, std::min(total - first, pieceFrames)));
    co_await turn.pause();
  }
  file.commit();
}

/// Whether the movie is there and not older than what it is made from. A movie that is there is whole.
bool isUpToDate(const RenderJob& job, const QString& photo) {
  const QFileInfo movie(job.movie);
  return movie.isFile() && movie.lastModified() >= QFileInfo(job.scene).lastModified() &&
         (photo.isEmpty() || !QFileInfo::exists(photo) ||
          movie.lastModified() >= QFileInfo(photo).lastModified());
}

QCoro::Task<JobOutcome> run(RenderJob job, const Photos& photos, RenderProgress progress,
                            std::stop_token stop, LockScreenCache& cache) {
  EventLoopTurn turn(stop);
  const SequenceDocument document = decodeScene(co_await readScene(job.scene, turn), job.scene);
  if (job.keepsMovie && isUpToDate(job, document.wallpaperUrl)) co_return JobOutcome::Kept;
  if (!job.movie.isEmpty() || !job.soundtrack.isEmpty()) {
    try {
      VideoExporter::requireExportable(document);
    } catch (const Error& error) {
      throw Error(sceneName(job.scene) + u": "_s + error.text());
    }
  }
  checkOutputs(job, document.wallpaperUrl, photos);
  if (!job.still.isEmpty()) co_await saveStill(document, job, turn);
  if (!job.soundtrack.isEmpty()) co_await saveSoundtrack(document, job.soundtrack, turn);
  if (!job.movie.isEmpty())
    co_await VideoExporter::exportMovie(document, job.style, job.movie, progress, stop, &cache);
  co_return JobOutcome::Made;
}

}  // namespace

SceneSurvey surveyOf(const QList<RenderJob>& jobs) {
  SceneSurvey survey;
  for (const RenderJob& job : jobs) {
    QString& wallpaper = survey.wallpapers.emplaceBack();
    QFile scene(job.scene);
    if (!QFileInfo(job.scene).isFile() || !scene.open(QIODevice::ReadOnly)) continue;
    try {
      const SequenceDocument document = decodeScene(scene.read(maxDocumentBytes + 1), job.scene);
      const QString& photo = document.wallpaperUrl;
      wallpaper = document.wallpaper + u'\n' + photo;
      struct stat there;
      if (!photo.isEmpty() && ::stat(QFile::encodeName(photo).constData(), &there) == 0)
        survey.photos.insert({there.st_dev, there.st_ino});
    } catch (const Error&) {
      // Its own job tells of it.
    }
  }
  return survey;
}

JobResult attempt(const RenderJob& job, const Photos& photos, const RenderProgress& progress,
                  std::stop_token stop, LockScreenCache& cache) {
  try {
    JobOutcome outcome = JobOutcome::Made;
    const auto task = [&]() -> QCoro::Task<> { outcome = co_await run(job, photos, progress, stop, cache); };
    waitForTask(task());
    return {outcome, {}};
  } catch (const ExportCancelled&) {
    return {JobOutcome::Interrupted, u"interrupted; %1 was not made"_s.arg(job.outputs().last())};
  } catch (const Error& error) {
    return {JobOutcome::Failed, error.text()};
  } catch (const std::exception& error) {
    return {JobOutcome::Failed, u"%1: %2"_s.arg(job.scene, QString::fromLocal8Bit(error.what()))};
  }
}

}  // namespace brisklet
