#include "movie/movie_writer.h"

#include "base/cores.h"
#include "base/logging.h"
#include "movie/aac_encoder.h"
#include "movie/bounded_queue.h"
#include "movie/held_picture_encoder.h"
#include "movie/movie_failure.h"
#include "movie/mp4_file.h"
#include "movie/sample_spool.h"
#include "movie/yuv_picture.h"

#include <pthread.h>

#include <QElapsedTimer>
#include <QObject>
#include <QtEndian>
#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

// Converted pictures take less than half the memory, so the longer queue is theirs.
constexpr size_t picturesInQueue = 1;
constexpr size_t convertedInQueue = 2;
constexpr size_t soundsInQueue = 64;
constexpr int bytesPerSample = 2;

bool isSilent(const QByteArray& pcm) {
  return pcm[0] == 0 &&
         std::memcmp(pcm.constData(), pcm.constData() + 1, static_cast<size_t>(pcm.size() - 1)) == 0;
}

/// `picture` from frame `first` on, or the one before it for longer if there is none.
template <typename Picture>
struct HeldRun {
  Picture picture;
  qint64 first = 0;
  qint64 frames = 0;
  Stay stay = Stay::Long;
};

/// A picture on its way from conversion to encoding.
struct ConvertedPicture {
  std::shared_ptr<const YuvPicture> picture;
  PictureCoding coding = PictureCoding::Predicted;
  std::vector<uint8_t> unchanged;  // macroblocks equal to the picture before

  [[nodiscard]] bool isNull() const { return picture == nullptr; }
};

/// Samples, or so many silent frames if there are none.
struct Sound {
  QByteArray pcm;
  qint64 silentFrames = 0;
};

// Pictures go through a thread that converts them and one of two that encode them, sound through another.
// What is encoded waits in spools, since all of the video is appended before the sound but a file must have
// them by turns, behind an index that is known only at the end: one pass, after the last sample, writes the
// file from beginning to end.
//
// A group of pictures, from a key frame at which the picture changes to the next such one, knows nothing of
// the others. So two encoders take the groups by turns, whatever the machine: the bytes do not depend on it.
class FileMovieWriter final : public MovieWriter {
 public:
  explicit FileMovieWriter(OutputFile file) : file_(std::move(file)) {}

  ~FileMovieWriter() override {
    isDropped_ = true;
    abandonQueues();
    // The finishing thread joins the others: it must not meet the destructor doing the same.
    if (finishingThread_.joinable()) finishingThread_.join();
  }

  [[nodiscard]] bool canAddVideo(const VideoSettings& settings) const override {
    constexpr int longestSide = 16384;
    const auto isSide = [](int side) { return side >= 16 && side <= longestSide && side % 2 == 0; };
    return status() == Status::Unknown && !video_ && isSide(settings.width) && isSide(settings.height) &&
           settings.framesPerSecond > 0 && settings.framesPerSecond <= 240 && settings.averageBitRate > 0;
  }

  void addVideo(const VideoSettings& settings) override {
    Q_ASSERT(canAddVideo(settings));
    video_ = settings;
  }

  [[nodiscard]] bool canAddAudio(const AudioSettings& settings) const override {
    return status() == Status::Unknown && !audio_ && AacEncoder::supports(encoderSettings(settings));
  }

  void addAudio(const AudioSettings& settings) override {
    Q_ASSERT(canAddAudio(settings));
    audio_ = settings;
  }

  [[nodiscard]] bool startWriting() override {
    Q_ASSERT(video_ && status() == Status::Unknown);
    guarded([this] {
      file_.append({"\0", 1});  // a full disk shows before the first picture
      openEncoders();
      setStatus(Status::Writing);
      if (hasOneCore) return;
      for (VideoLane& lane : lanes_)
        lane.thread = started("movie video", [&lane] {
          while (const auto run = lane.queue.take()) encode(lane, *run);
        });
      conversionThread_ = started("movie pictures", [this] {
        while (std::optional<HeldRun<QImage>> run = pictures_.take()) convert(std::move(*run));
        for (VideoLane& lane : lanes_) lane.queue.close();
      });
      audioThread_ = started("movie sound", [this] {
        while (const std::optional<Sound> sound = sounds_.take()) encode(*sound);
      });
    });
    return status() == Status::Writing;
  }

  [[nodiscard]] bool isReadyForMoreVideo() const override { return pictures_.hasRoom(); }
  [[nodiscard]] bool isReadyForMoreAudio() const override { return sounds_.hasRoom(); }

  bool appendFrames(const QImage& picture, qint64 first, qint64 count, Stay stay) override {
    if (status() != Status::Writing || isVideoFinished_ || first < nextFrame_ || count < 1 ||
        picture.width() != video_->width || picture.height() != video_->height)
      return false;
    const bool isRepeat = pictureKey_ == picture.cacheKey();
    HeldRun<QImage> run{isRepeat ? QImage() : picture, first, count, stay};
    if (hasOneCore)
      guarded([&] { convert(std::move(run)); });
    else
      pictures_.push(std::move(run));
    pictureKey_ = picture.cacheKey();
    nextFrame_ = first + count;
    return true;
  }

  bool appendAudio(const AudioChunk& chunk) override {
    if (status() != Status::Writing || !audio_ || isAudioFinished_ || chunk.presentationTime < nextSound_ ||
        chunk.frames < 1 || chunk.pcm.size() != chunk.frames * audio_->channels * bytesPerSample)
      return false;
    if (chunk.presentationTime > nextSound_) take({{}, chunk.presentationTime - nextSound_});
    take(isSilent(chunk.pcm) ? Sound{{}, chunk.frames} : Sound{chunk.pcm, 0});
    nextSound_ = chunk.presentationTime + chunk.frames;
    return true;
  }

  void markVideoFinished() override {
    isVideoFinished_ = true;
    pictures_.close();
  }

  void markAudioFinished() override {
    isAudioFinished_ = true;
    sounds_.close();
  }

  void finishWriting(std::function<void()> completion) override {
    Q_ASSERT(!finishingThread_.joinable());
    markVideoFinished();
    markAudioFinished();
    const auto complete = [this, completion = std::move(completion)] {
      QMetaObject::invokeMethod(&completionContext_, completion, Qt::QueuedConnection);
    };
    if (hasOneCore) {
      if (status() == Status::Writing) guarded([this] { writeMovie(); });
      return complete();
    }
    guarded([this, &complete] {
      finishingThread_ = std::jthread([this, complete] {
        ::pthread_setname_np(::pthread_self(), "movie file");
        for (std::jthread* thread : {&conversionThread_, &lanes_[0].thread, &lanes_[1].thread, &audioThread_})
          if (thread->joinable()) thread->join();
        if (isDropped_) return;
        if (status() == Status::Writing) guarded([this] { writeMovie(); });
        complete();
      });
    });
    if (!finishingThread_.joinable()) complete();
  }

  [[nodiscard]] Status status() const override {
    const std::lock_guard lock(mutex_);
    return status_;
  }

  [[nodiscard]] QString errorText() const override {
    const std::lock_guard lock(mutex_);
    return errorText_;
  }

 private:
  static AacSettings encoderSettings(const AudioSettings& settings) {
    return {settings.sampleRate, settings.channels, settings.bitRate};
  }

  /// An encoder and the groups of pictures that are its.
  struct VideoLane {
    BoundedQueue<HeldRun<ConvertedPicture>> queue{convertedInQueue};
    std::optional<HeldPictureEncoder> encoder;
    int64_t frame = 0;  // which is encoded
    std::jthread thread;
  };

  /// Debuggers and `top -H` show the name.
  template <typename Work>
  std::jthread started(const char* name, Work work) {
    return std::jthread([this, name, work] {
      ::pthread_setname_np(::pthread_self(), name);
      guarded(work);
    });
  }

  void openEncoders() {
    groups_.emplace(video_->framesPerSecond);
    for (VideoLane& lane : lanes_)
      lane.encoder.emplace(H264Settings{video_->width, video_->height, video_->framesPerSecond},
                           video_->averageBitRate,
                           [this, &lane](std::span<const uint8_t> accessUnit, bool isIdr) {
                             const std::lock_guard lock(videoSpoolMutex_);
                             videoSpool_.append(accessUnit, lane.frame++, 1, isIdr);
                           });
    if (audio_)
      audioEncoder_.emplace(encoderSettings(*audio_),
                            [this](std::span<const uint8_t> packet, int64_t time, int64_t duration) {
                              audioSpool_.append(packet, time, duration, true);
                            });
  }

  void convert(HeldRun<QImage> run) {
    ConvertedPicture converted;
    converted.coding = groups_->append(!run.picture.isNull(), run.frames);
    if (!run.picture.isNull()) {
      const QImage rgb = std::move(run.picture).convertToFormat(QImage::Format_RGB32);
      auto picture = std::make_shared<YuvPicture>(rgb.width(), rgb.height());
      picture->setFromRgb(reinterpret_cast<const uint32_t*>(rgb.constBits()), rgb.bytesPerLine() / 4);
      if (converted.coding == PictureCoding::Predicted)
        converted.unchanged = equalMacroblocks(*converted_, *picture);
      converted.picture = converted_ = std::move(picture);
    }
    VideoLane& lane = lanes_[groups_->count() % lanes_.size()];
    HeldRun<ConvertedPicture> next{std::move(converted), run.first, run.frames, run.stay};
    if (hasOneCore) return encode(lane, next);
    lane.queue.waitForRoom();
    lane.queue.push(std::move(next));
  }

  static void encode(VideoLane& lane, const HeldRun<ConvertedPicture>& run) {
    lane.frame = run.first;
    const bool isNew = !run.picture.isNull();
    if (isNew) lane.encoder->show(run.picture.picture, run.picture.coding, run.picture.unchanged, run.stay);
    for (qint64 i = isNew ? 1 : 0; i < run.frames && !lane.queue.isAbandoned(); ++i) lane.encoder->hold();
  }

  void take(Sound sound) {
    if (hasOneCore)
      guarded([&] { encode(sound); });
    else
      sounds_.push(std::move(sound));
  }

  void encode(const Sound& sound) {
    if (sound.silentFrames > 0) return audioEncoder_->appendSilence(sound.silentFrames);
    samples_.resize(static_cast<size_t>(sound.pcm.size() / bytesPerSample));
    qFromLittleEndian<int16_t>(sound.pcm.constData(), static_cast<qsizetype>(samples_.size()),
                               samples_.data());
    audioEncoder_->append(samples_);
  }

  void writeMovie() {
    if (videoSpool_.samples().empty()) throw MovieFailure(u"there is no picture to write"_s);
    videoSpool_.sortByTime();
    const Mp4VideoTrack video{video_->width, video_->height, video_->framesPerSecond,
                              lanes_[0].encoder->decoderConfiguration(), videoSpool_};
    std::optional<Mp4AudioTrack> audio;
    if (audio_) {
      audioEncoder_->finish();
      const auto configuration = audioEncoder_->decoderConfiguration();
      audio.emplace(Mp4AudioTrack{audio_->sampleRate,
                                  audio_->channels,
                                  audio_->bitRate,
                                  audioEncoder_->packetSamples(),
                                  audioEncoder_->priming(),
                                  {configuration.begin(), configuration.end()},
                                  audioSpool_});
    }
    QElapsedTimer timer;
    timer.start();
    qCInfo(movieLog) << "encoded" << videoSpool_.samples().size() << "pictures and"
                     << audioSpool_.samples().size() << "blocks of sound of" << file_.path();
    writeMp4(file_.fd(), video, audio ? &*audio : nullptr);
    file_.commit();
    qCInfo(movieLog) << "wrote" << file_.path() << "in" << timer.elapsed() << "ms";
    setStatus(Status::Completed);
  }

  template <typename Step>
  void guarded(Step step) {
    try {
      step();
    } catch (const MovieFailure& failure) {
      fail(couldNotWrite(file_.path(), failure.text()));
    } catch (const Error& failure) {
      fail(failure);
    } catch (const std::exception& failure) {
      fail(couldNotWrite(file_.path(), QString::fromUtf8(failure.what())));
    }
  }

  /// From here on all that is appended is refused, and the queues have room, so that nobody waits for it.
  void fail(const Error& failure) {
    {
      const std::lock_guard lock(mutex_);
      if (status_ == Status::Failed) return;
      status_ = Status::Failed;
      errorText_ = failure.text();
    }
    abandonQueues();
  }

  void abandonQueues() {
    pictures_.abandon();
    for (VideoLane& lane : lanes_) lane.queue.abandon();
    sounds_.abandon();
  }

  void setStatus(Status status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
  }

  OutputFile file_;
  QObject completionContext_;  // what is queued for it dies with it

  // The calling thread's.
  std::optional<VideoSettings> video_;
  std::optional<AudioSettings> audio_;
  bool isVideoFinished_ = false;
  bool isAudioFinished_ = false;
  qint64 nextFrame_ = 0;
  qint64 nextSound_ = 0;
  std::optional<qint64> pictureKey_;

  // One thread's each, then the finishing thread's.
  SampleSpool videoSpool_{file_.folder()};
  SampleSpool audioSpool_{file_.folder()};
  std::mutex videoSpoolMutex_;
  std::optional<AacEncoder> audioEncoder_;
  std::vector<int16_t> samples_;
  std::shared_ptr<const YuvPicture> converted_;  // the picture before
  std::optional<PictureGroups> groups_;

  BoundedQueue<HeldRun<QImage>> pictures_{picturesInQueue};
  std::array<VideoLane, 2> lanes_;
  BoundedQueue<Sound> sounds_{soundsInQueue};
  mutable std::mutex mutex_;
  Status status_ = Status::Unknown;
  QString errorText_;
  std::atomic<bool> isDropped_ = false;

  std::jthread conversionThread_;
  std::jthread audioThread_;
  std::jthread finishingThread_;
};

}  // namespace

std::unique_ptr<MovieWriter> makeMovieWriter(OutputFile file) {
  return std::make_unique<FileMovieWriter>(std::move(file));
}

}  // namespace brisklet
