#include "render/render_job.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>
#include <algorithm>
#include <cstdio>

#include "export/video_exporter.h"
#include "lockscreen/lock_screen_view.h"
#include "model/document_json.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "sound/wav_file.h"

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

bool isStandardInput(const QString& scene) {
  return scene == u"-"_s;
}

QString sceneName(const QString& scene) {
  return isStandardInput(scene) ? u"standard input"_s : scene;
}

/// At most one byte more than a document may have, so that the reader can tell that there is too much.
QByteArray readScene(const QString& scene) {
  QFile file(scene);
  const bool isOpen =
      isStandardInput(scene) ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
  if (!isOpen || QFileInfo(file).isDir()) {
    throw Error(u"%1: it cannot be read: %2"_s.arg(
        sceneName(scene), QFileInfo(scene).isDir() ? u"it is a directory"_s : file.errorString().toLower()));
  }
  // Pipes give what they have, a piece at a time.
  QByteArray bytes;
  while (bytes.size() <= maxDocumentBytes) {
    const QByteArray piece = file.read(maxDocumentBytes + 1 - bytes.size());
    if (piece.isEmpty()) break;
    bytes.append(piece);
  }
  if (file.error() != QFileDevice::NoError)
    throw Error(u"%1: it cannot be read: %2"_s.arg(sceneName(scene), file.errorString().toLower()));
  return bytes;
}

SequenceDocument loadScene(const QString& scene) {
  const QByteArray bytes = readScene(scene);
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

/// Replaces the file once everything is written.
void saveFile(const QString& path, const std::function<bool(QIODevice&)>& write) {
  const QFileInfo info(path);
  if (info.exists() && !info.isFile())
    throw Error(u"%1: it cannot be written: it is %2"_s.arg(
        path, info.isDir() ? u"a directory"_s : u"not a regular file"_s));
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !write(file) || !file.commit())
    throw Error(u"%1: it cannot be written: %2"_s.arg(path, file.errorString().toLower()));
}

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
  saveFile(job.still, [&png](QIODevice& file) { return file.write(png) == png.size(); });
}

void saveSoundtrack(const SequenceDocument& document, const RenderJob& job) {
  constexpr qint64 pieceFrames = 1 << 20;
  const qint64 total = NotificationSounds::soundtrackFrames(document);
  const QByteArray header = wavHeader(total * 4, 2);
  saveFile(job.soundtrack, [&](QIODevice& file) {
    bool isWritten = file.write(header) == header.size();
    for (qint64 first = 0; isWritten && first < total; first += pieceFrames) {
      const QByteArray piece =
          NotificationSounds::stereoPCM(document, first, std::min(total - first, pieceFrames));
      isWritten = file.write(piece) == piece.size();
    }
    return isWritten;
  });
}

}  // namespace

QCoro::Task<> runRenderJob(RenderJob job, RenderProgress progress, std::stop_token stop) {
  const SequenceDocument document = loadScene(job.scene);
  if (!job.movie.isEmpty() || !job.soundtrack.isEmpty()) {
    try {
      VideoExporter::requireExportable(document);
    } catch (const Error& error) {
      throw Error(sceneName(job.scene) + u": "_s + error.text());
    }
  }
  checkOutputs(job, document);
  if (!job.still.isEmpty()) saveStill(document, job);
  if (!job.soundtrack.isEmpty()) saveSoundtrack(document, job);
  if (!job.movie.isEmpty()) co_await VideoExporter::exportMovie(document, job.movie, progress, stop);
}

}  // namespace brisklet
