#include "export/video_exporter.h"

#include "base/logging.h"
#include "export/event_loop.h"
#include "lockscreen/lock_screen_view.h"
#include "model/catalogue.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"

#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {

namespace {

constexpr auto readinessPoll = 5ms;
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

void refuseOverwritingThePhoto(const SequenceDocument& document, const QString& path) {
  std::error_code failure;
  if (document.wallpaper == customId &&
      std::filesystem::equivalent(outputPlace(path), QFile::encodeName(document.wallpaperUrl).toStdString(),
                                  failure))
    throw couldNotWrite(path, u"it is the wallpaper photo of the sequence"_s);
}

/// The picture of each frame in order. A frame that shows the same cards as the one before is the same
/// QImage, which is how the writer knows that nothing changed.
class FramePictures {
 public:
  explicit FramePictures(const SequenceDocument& document) : document_(document), player_(document) {
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
      picture_ = captureFrame({document_, player_, Rendering::Movie}, cache_);
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

QCoro::Task<> appendVideo(const SequenceDocument& document, MovieWriter& writer, EventLoopTurn& turn,
                          const VideoExporter::Progress& progress) {
  const qint64 count = VideoExporter::frameCount(document);
  FramePictures frames(document);
  for (qint64 i = 0; i < count; ++i) {
    const QImage& picture = frames.at(i);
    if (picture.isNull()) continue;
    if (turn.isOver()) co_await turn.pause();
    while (!writer.isReadyForMoreVideo()) co_await turn.pause(readinessPoll);
    writer.appendFrame(picture, i);
    if (progress) progress(i + 1, count);
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

QCoro::Task<> write(const SequenceDocument& document, MovieWriter& writer, EventLoopTurn& turn,
                    const VideoExporter::Progress& progress) {
  const auto failure = [&writer] {
    return writer.errorText().isEmpty() ? Error(ExportError()) : Error(writer.errorText());
  };
  if (!writer.canAddVideo(videoSettings)) throw ExportError();
  writer.addVideo(videoSettings);
  const bool hasAudio = writer.canAddAudio(audioSettings);
  if (hasAudio) writer.addAudio(audioSettings);
  if (!writer.startWriting()) throw failure();

  QElapsedTimer timer;
  timer.start();
  co_await appendVideo(document, writer, turn, progress);
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

QCoro::Task<> VideoExporter::exportMovie(SequenceDocument document, QString path, Progress progress,
                                         std::stop_token stop, MakeWriter makeWriter) {
  requireExportable(document);
  refuseOverwritingThePhoto(document, path);
  OutputFile file(path);
  file.removeFormer();
  const std::unique_ptr<MovieWriter> writer = makeWriter(std::move(file));
  EventLoopTurn turn(std::move(stop));
  co_await write(document, *writer, turn, progress);
}

}  // namespace brisklet
