#include "export/video_exporter.h"

#include <QCoroTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

#include "lockscreen/lock_screen_view.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {

namespace {

constexpr auto readinessPoll = 5ms;
/// The calling thread's other work gets its turn at least this often, also while the writer is always ready.
constexpr qint64 longestTurnMs = 8;
constexpr qint64 audioChunkFrames = 4096;
/// The soundtrack is made in pieces of about twelve seconds, so that its length costs no memory.
constexpr qint64 soundtrackPieceFrames = 128 * audioChunkFrames;

constexpr VideoSettings videoSettings{.width = 1170,
                                      .height = 2532,
                                      .framesPerSecond = VideoExporter::framesPerSecond,
                                      .averageBitRate = 8'000'000};
constexpr AudioSettings audioSettings{
    .sampleRate = NotificationSounds::sampleRate, .channels = 2, .bitRate = 128'000};

double momentMs(qint64 frame) {
  return static_cast<double>(frame) / VideoExporter::framesPerSecond * 1000;
}

/// Removes what stands at the destination. Only a plain file is ever removed.
void clearDestination(const QString& path) {
  const QFileInfo info(path);
  if (!info.exists()) return;
  if (info.isDir()) throw Error(u"Could not write \"%1\": it is a directory."_s.arg(path));
  if (!info.isFile()) throw Error(u"Could not write \"%1\": it is not a regular file."_s.arg(path));
  QFile file(path);
  if (!file.remove()) throw Error(u"Could not replace \"%1\": %2."_s.arg(path, file.errorString().toLower()));
}

void refuseOverwritingThePhoto(const SequenceDocument& document, const QString& path) {
  const QString photo = QFileInfo(document.wallpaperUrl).canonicalFilePath();
  if (document.wallpaper == u"custom"_s && !photo.isEmpty() && photo == QFileInfo(path).canonicalFilePath())
    throw Error(u"Could not write \"%1\": it is the wallpaper photo of the sequence."_s.arg(path));
}

/// Lets the event loop run between steps, and ends the export when it is asked to stop.
class Turn {
 public:
  explicit Turn(std::stop_token stop) : stop_(std::move(stop)) { sinceResumed_.start(); }

  [[nodiscard]] bool isOver() const { return sinceResumed_.elapsed() >= longestTurnMs; }

  QCoro::Task<> pause(std::chrono::milliseconds time) {
    co_await QCoro::sleepFor(time);
    if (stop_.stop_requested()) throw ExportCancelled();
    sinceResumed_.start();
  }

 private:
  std::stop_token stop_;
  QElapsedTimer sinceResumed_;
};

/// The picture of each frame in order. A frame that shows the same cards as the one before is the same
/// QImage, which is how the writer knows that nothing changed.
class Frames {
 public:
  explicit Frames(const SequenceDocument& document) : document_(document), player_(document) {
    for (const Ping& ping : document.notifications) landingsMs_.push_back(ping.delayMs);
    std::sort(landingsMs_.begin(), landingsMs_.end());
  }

  const QImage& at(qint64 frame) {
    const double timeMs = momentMs(frame);
    player_.stop();
    player_.setElapsedMs(timeMs);
    // Cards change only at a moment at which a ping lands.
    bool landed = false;
    for (; landings_ < landingsMs_.size() && landingsMs_[landings_] <= timeMs; ++landings_) landed = true;
    if (!picture_.isNull() && !landed) return picture_;

    QList<Ping> visible = document_.visiblePings(timeMs);
    if (picture_.isNull() || visible != visible_) {
      visible_ = std::move(visible);
      picture_ = captureFrame({document_, player_, CaptureMode::Capture}, cache_);
    }
    return picture_;
  }

 private:
  const SequenceDocument& document_;
  SequencePlayer player_;
  LockScreenCache cache_;
  std::vector<double> landingsMs_;
  std::size_t landings_ = 0;
  QList<Ping> visible_;
  QImage picture_;
};

/// Resumes the coroutine that awaits it when the movie's file is complete or has failed.
class Finished {
 public:
  explicit Finished(MovieWriter& writer) : writer_(writer) {}

  [[nodiscard]] bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> exporter) {
    writer_.finishWriting([exporter]() mutable { exporter.resume(); });
  }
  void await_resume() const noexcept {}

 private:
  MovieWriter& writer_;
};

QCoro::Task<> appendVideo(const SequenceDocument& document, MovieWriter& writer, Turn& turn,
                          const VideoExporter::Progress& progress) {
  const qint64 count = VideoExporter::frameCount(document);
  Frames frames(document);
  for (qint64 i = 0; i < count; ++i) {
    const QImage& picture = frames.at(i);
    if (picture.isNull()) continue;
    if (turn.isOver()) co_await turn.pause(0ms);
    while (!writer.isReadyForMoreVideo()) co_await turn.pause(readinessPoll);
    writer.appendFrame(picture, i);
    if (progress) progress(i + 1, count);
  }
  writer.markVideoFinished();
}

QCoro::Task<> appendAudio(const SequenceDocument& document, MovieWriter& writer, Turn& turn) {
  const qint64 total = NotificationSounds::soundtrackFrames(document);
  QByteArray piece;
  for (qint64 offset = 0; offset < total; offset += audioChunkFrames) {
    const qint64 inPiece = offset % soundtrackPieceFrames;
    if (inPiece == 0)
      piece =
          NotificationSounds::stereoPCM(document, offset, std::min(total - offset, soundtrackPieceFrames));
    if (turn.isOver()) co_await turn.pause(0ms);
    while (!writer.isReadyForMoreAudio()) co_await turn.pause(readinessPoll);
    const qint64 frames = std::min(total - offset, audioChunkFrames);
    const auto chunk =
        NotificationSounds::audioSampleBuffer(piece.sliced(inPiece * 4, frames * 4), frames, offset);
    if (chunk) writer.appendAudio(*chunk);
  }
  writer.markAudioFinished();
}

QCoro::Task<> write(const SequenceDocument& document, MovieWriter& writer, Turn& turn,
                    const VideoExporter::Progress& progress) {
  const auto failure = [&writer] {
    return writer.errorText().isEmpty() ? Error(ExportError()) : Error(writer.errorText());
  };
  if (!writer.canAddVideo(videoSettings)) throw ExportError();
  writer.addVideo(videoSettings);
  const bool hasAudio = writer.canAddAudio(audioSettings);
  if (hasAudio) writer.addAudio(audioSettings);
  if (!writer.startWriting()) throw failure();

  co_await appendVideo(document, writer, turn, progress);
  if (hasAudio) co_await appendAudio(document, writer, turn);
  co_await Finished(writer);
  if (writer.status() != MovieWriter::Status::Completed) throw failure();
}

}  // namespace

ExportError::ExportError() : Error(u"Could not write the video file."_s) {}

ExportCancelled::ExportCancelled() : Error(u"The export was stopped."_s) {}

qint64 VideoExporter::frameCount(const SequenceDocument& document) {
  const double frames = document.durationMs() / 1000 * framesPerSecond;
  return frames < 1 ? 1 : static_cast<qint64>(frames);
}

void VideoExporter::requireExportable(const SequenceDocument& document) {
  const double durationMs = document.durationMs();
  if (!std::isfinite(durationMs)) throw Error(u"The sequence never ends, so it cannot be a movie."_s);
  if (durationMs > longestMs) {
    const double hours = durationMs / 1000 / 60 / 60;
    throw Error(u"The sequence is %1 hours long; a movie can have 24 at most."_s.arg(hours, 0, 'g', 4));
  }
}

QCoro::Task<> VideoExporter::exportMovie(SequenceDocument document, QString path, Progress progress,
                                         std::stop_token stop, MakeWriter makeWriter) {
  requireExportable(document);
  refuseOverwritingThePhoto(document, path);
  clearDestination(path);
  std::unique_ptr<MovieWriter> writer = makeWriter(path);
  Turn turn(std::move(stop));
  try {
    co_await write(document, *writer, turn, progress);
  } catch (const ExportCancelled&) {
    // The partial file stays.
    throw;
  } catch (...) {
    writer->removeFile();
    throw;
  }
}

}  // namespace brisklet
