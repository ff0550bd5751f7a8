#include "render/render_job.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QBuffer>
#include <QCoroTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <chrono>

#include "export/video_exporter.h"
#include "lockscreen/lock_screen_view.h"
#include "model/document_json.h"
#include "platform/unique_fd.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "sound/wav_file.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

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

/// Lets the event loop hear of an interruption.
QCoro::Task<> pause(std::chrono::milliseconds time, std::stop_token stop) {
  co_await QCoro::sleepFor(time);
  if (stop.stop_requested()) throw ExportCancelled();
}

/// At most one piece more than a document may have, so that the reader can tell that there is too much. A
/// pipe and a terminal may let their reader wait, which is done here, and not in a call that hears nothing
/// else.
QCoro::Task<QByteArray> readScene(QString scene, std::stop_token stop) {
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
      co_await pause(10ms, stop);
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

/// Refuses outputs that would destroy an input or each other.
void checkOutputs(const RenderJob& job, const SequenceDocument& document) {
  const auto canonical = [](const QString& path) {
    const QFileInfo info(path);
    return info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
  };
  QStringList taken;
  for (const QString& output : {job.still, job.soundtrack, job.movie}) {
    if (output.isEmpty()) continue;
    const QString path = canonical(output);
    if (!isStandardInput(job.scene) && path == canonical(job.scene))
      throw Error(u"%1: it is the scene file, and would be overwritten"_s.arg(output));
    if (!document.wallpaperUrl.isEmpty() && path == canonical(document.wallpaperUrl))
      throw Error(u"%1: it is the scene's photo, and would be overwritten"_s.arg(output));
    if (taken.contains(path)) throw Error(u"%1: two outputs have this name"_s.arg(output));
    taken.append(path);
  }
}

/// A file that replaces the one at its path once everything is written.
class Output {
 public:
  explicit Output(const QString& path) : file_(path) {
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
      throw Error(u"%1: it cannot be written: it is %2"_s.arg(
          path, info.isDir() ? u"a directory"_s : u"not a regular file"_s));
    require(file_.open(QIODevice::WriteOnly));
  }

  void write(const QByteArray& bytes) { require(file_.write(bytes) == bytes.size()); }
  void commit() { require(file_.commit()); }

 private:
  void require(bool succeeded) const {
    if (!succeeded)
      throw Error(u"%1: it cannot be written: %2"_s.arg(file_.fileName(), file_.errorString().toLower()));
  }

  QSaveFile file_;
};

void saveStill(const SequenceDocument& document, const RenderJob& job) {
  SequencePlayer player(document);
  player.setElapsedMs(job.stillMs);
  LockScreenCache cache;
  const QImage picture = captureFrame({document, player, CaptureMode::Capture}, cache);
  if (picture.isNull()) throw Error(u"%1: there is not enough memory for the picture"_s.arg(job.still));
  // In memory first: libpng would remark on a full disk itself.
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  if (!QImageWriter(&buffer, "png").write(picture))
    throw Error(u"%1: there is not enough memory for the picture"_s.arg(job.still));
  Output file(job.still);
  file.write(png);
  file.commit();
}

QCoro::Task<> saveSoundtrack(const SequenceDocument& document, QString path, std::stop_token stop) {
  constexpr qint64 pieceFrames = 1 << 20;
  const qint64 total = NotificationSounds::soundtrackFrames(document);
  const QByteArray header = wavHeader(total * 4, 2);
  Output file(path);
  file.write(header);
  for (qint64 first = 0; first < total; first += pieceFrames) {
    file.write(NotificationSounds::stereoPCM(document, first, std::min(total - first, pieceFrames)));
    co_await pause(0ms, stop);
  }
  file.commit();
}

}  // namespace

QCoro::Task<> runRenderJob(RenderJob job, RenderProgress progress, std::stop_token stop) {
  const SequenceDocument document = decodeScene(co_await readScene(job.scene, stop), job.scene);
  if (!job.movie.isEmpty() || !job.soundtrack.isEmpty()) {
    try {
      VideoExporter::requireExportable(document);
    } catch (const Error& error) {
      throw Error(sceneName(job.scene) + u": "_s + error.text());
    }
  }
  checkOutputs(job, document);
  if (!job.still.isEmpty()) saveStill(document, job);
  if (!job.soundtrack.isEmpty()) co_await saveSoundtrack(document, job.soundtrack, stop);
  if (!job.movie.isEmpty()) co_await VideoExporter::exportMovie(document, job.movie, progress, stop);
}

}  // namespace brisklet
