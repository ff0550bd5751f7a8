#include "export/video_exporter.h"

#include "base/logging.h"
#include "export/event_loop.h"
#include "export/frame_pictures.h"
#include "export/frame_stream.h"
#include "model/catalogue.h"
#include "sound/notification_sounds.h"

#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <optional>
#include <system_error>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {

namespace {

constexpr auto readinessPoll = 5ms;
/// A frame in motion takes about ten milliseconds to paint.
constexpr auto paintingPoll = 1ms;
constexpr qint64 audioChunkFrames = 4096;
/// The soundtrack is made in pieces of about twelve seconds, so that its length costs no memory.
constexpr qint64 soundtrackPieceFrames = 128 * audioChunkFrames;

/// Of a lock screen alone, and of pages that are no larger. Cards that move without a pause take more.
constexpr int averageBitRate = 8'000'000, averageBitRateInMotion = 12'000'000;
constexpr AudioSettings audioSettings{
    .sampleRate = NotificationSounds::sampleRate, .channels = 2, .bitRate = 128'000};

VideoSettings videoSettings(const MovieStyle& style) {
  const QSize size = FramePictures::size(style);
  const double area = static_cast<double>(size.width()) * size.height() / (captureWidth * captureHeight);
  return {.width = size.width(),
          .height = size.height(),
          .framesPerSecond = VideoExporter::framesPerSecond,
          .averageBitRate = static_cast<int>((style.inMotion ? averageBitRateInMotion : averageBitRate) *
                                             std::max(1.0, area))};
}

void refuseOverwritingThePhoto(const SequenceDocument& document, const QString& path) {
  std::error_code failure;
  if (document.wallpaper == customId &&
      std::filesystem::equivalent(outputPlace(path), QFile::encodeName(document.wallpaperUrl).toStdString(),
                                  failure))
    throw couldNotWrite(path, u"it is the wallpaper photo of the sequence"_s);
}

QCoro::Task<> appendVideo(const SequenceDocument& document, const MovieStyle& style, LockScreenCache& cache,
                          MovieWriter& writer, EventLoopTurn& turn, const VideoExporter::Progress& progress) {
  FrameStream stream(document, style, cache);
  while (true) {
    if (turn.isOver()) co_await turn.pause();
    while (!writer.isReadyForMoreVideo()) co_await turn.pause(readinessPoll);
    while (!stream.isReady()) co_await turn.pause(paintingPoll);
    const std::optional<HeldFrames> frames = stream.next();
    if (!frames) break;
    writer.appendFrames(frames->picture, frames->first, frames->count, frames->stay);
    if (progress) progress(frames->first + frames->count, VideoExporter::frameCount(document));
  }
  writer.markVideoFinished();
}

QCoro::Task<> appendAudio(const SequenceDocument& document, MovieWriter& writer, EventLoopTurn& turn) {
  const qint64 total = NotificationSounds::soundtrackFrames(document);
  QByteArray piece;
  for (qint64 offset = 0; offset < total; offset += audioChunkFrames) {
    const qint64 inPiece = offset % soundtrackPieceFrames;
    if (inPiece == 0)
      piece =
          NotificationSounds::stereoPCM(document, offset, std::min(total - offset, soundtrackPieceFrames));
    if (turn.isOver()) co_await turn.pause();
    while (!writer.isReadyForMoreAudio()) co_await turn.pause(readinessPoll);
    const qint64 frames = std::min(total - offset, audioChunkFrames);
    const auto chunk =
        NotificationSounds::audioSampleBuffer(piece.sliced(inPiece * 4, frames * 4), frames, offset);
    if (chunk) writer.appendAudio(*chunk);
  }
  writer.markAudioFinished();
}

QCoro::Task<> write(const SequenceDocument& document, const MovieStyle& style, LockScreenCache& cache,
                    MovieWriter& writer, EventLoopTurn& turn, const VideoExporter::Progress& progress) {
  const auto failure = [&writer] {
    return writer.errorText().isEmpty() ? Error(ExportError()) : Error(writer.errorText());
  };
  if (!writer.canAddVideo(videoSettings(style))) throw ExportError();
  writer.addVideo(videoSettings(style));
  const bool hasAudio = writer.canAddAudio(audioSettings);
  if (hasAudio) writer.addAudio(audioSettings);
  if (!writer.startWriting()) throw failure();

  QElapsedTimer timer;
  timer.start();
  co_await appendVideo(document, style, cache, writer, turn, progress);
  qCInfo(exportLog) << "appended" << VideoExporter::frameCount(document) << "frames after" << timer.elapsed()
                    << "ms";
  if (hasAudio) co_await appendAudio(document, writer, turn);
  qCInfo(exportLog) << "appended the sound after" << timer.elapsed() << "ms";
  bool isFinished = false;
  writer.finishWriting([&isFinished] { isFinished = true; });
  while (!isFinished) co_await turn.pause(readinessPoll);
  if (writer.status() != MovieWriter::Status::Completed) throw failure();
  qCInfo(exportLog) << "completed the movie after" << timer.elapsed() << "ms";
}

}  // namespace

ExportError::ExportError() : Error(u"Could not write the video file."_s) {}

qint64 VideoExporter::frameCount(const SequenceDocument& document) {
  const double frames = document.durationMs() / 1000 * framesPerSecond;
  return frames < 1 ? 1 : static_cast<qint64>(frames);
}

void VideoExporter::requireExportable(const SequenceDocument& document) {
  const double durationMs = document.durationMs();
  if (!std::isfinite(durationMs)) throw Error(u"The sequence never ends, so it cannot be a movie."_s);
  if (durationMs > longestMs) {
    QString hours = QString::number(durationMs / 1000 / 60 / 60, 'g', 4);
    if (hours == u"24"_s) hours = u"more than 24"_s;
    throw Error(u"The sequence is %1 hours long; a movie can have 24 at most."_s.arg(hours));
  }
}

QCoro::Task<> VideoExporter::exportMovie(SequenceDocument document, MovieStyle style, QString path,
                                         Progress progress, std::stop_token stop, LockScreenCache* cache) {
  requireExportable(document);
  refuseOverwritingThePhoto(document, path);
  LockScreenCache own;
  OutputFile file(path);
  file.removeFormer();
  const std::unique_ptr<MovieWriter> writer = makeMovieWriter(std::move(file));
  EventLoopTurn turn(std::move(stop));
  co_await write(document, style, cache ? *cache : own, *writer, turn, progress);
}

}  // namespace brisklet
