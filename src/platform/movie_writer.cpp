#include "platform/movie_writer.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QtEndian>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

#include "base/error.h"
#include "platform/aac_encoder.h"
#include "platform/held_picture_encoder.h"
#include "platform/movie_failure.h"
#include "platform/mp4_file.h"
#include "platform/sample_spool.h"
#include "platform/unique_fd.h"
#include "platform/yuv_picture.h"

namespace brisklet {

namespace {

constexpr size_t picturesInQueue = 4;
constexpr size_t soundsInQueue = 64;
constexpr int bytesPerSample = 2;

QString couldNotWrite(const QString& path, const char* cause) {
  return QStringLiteral("Could not write \"%1\": %2.").arg(path, QString::fromUtf8(cause));
}

/// The empty file that the movie goes to. Only a file that was made here is ever taken away again.
class MovieFile {
 public:
  explicit MovieFile(const QString& path) : path_(QFile::encodeName(path)) {
    fd_ = UniqueFd(::open(path_.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666));
    if (!fd_) {
      const bool isFolder = errno == EEXIST && QFileInfo(path).isDir();
      throw MovieFailure(systemCause(isFolder ? EISDIR : errno));
    }
    ::fstat(fd_.get(), &made_);
  }

  [[nodiscard]] int fd() const { return fd_.get(); }

  /// Some file systems report only now that they could not keep what was written.
  void close() {
    if (::close(fd_.release()) != 0 && errno != EINTR) throw MovieFailure(systemCause(errno));
  }

  /// The path may have come to mean another file meanwhile; that one stays.
  void remove() {
    struct stat named = {};
    if (::lstat(path_.constData(), &named) == 0 && S_ISREG(named.st_mode) && named.st_dev == made_.st_dev &&
        named.st_ino == made_.st_ino)
      ::unlink(path_.constData());
  }

 private:
  QByteArray path_;
  UniqueFd fd_;
  struct stat made_ = {};
};

bool isSilent(const QByteArray& pcm) {
  return pcm[0] == 0 &&
         std::memcmp(pcm.constData(), pcm.constData() + 1, static_cast<size_t>(pcm.size() - 1)) == 0;
}

/// The picture `shown` from `firstFrame` on, or the one before it for longer if there is none.
struct PictureRun {
  QImage shown;
  qint64 firstFrame = 0;
  qint64 frames = 0;
};

/// Samples, or so many silent frames if there are none.
struct Sound {
  QByteArray pcm;
  qint64 silentFrames = 0;
};

class FileMovieWriter final : public MovieWriter {
 public:
  explicit FileMovieWriter(const QString& path)
      : path_(path), folder_(QFile::encodeName(QFileInfo(path).path()).toStdString()), file_(path) {}

  ~FileMovieWriter() override {
    for (std::jthread* thread : {&finishingThread_, &videoThread_, &audioThread_}) thread->request_stop();
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
    av_log_set_level(AV_LOG_QUIET);  // what matters comes back as an error
    try {
      beginMp4(file_.fd());  // a full disk shows before the first picture
      videoEncoder_.emplace(H264Settings{video_->width, video_->height, video_->framesPerSecond},
                            [this](std::span<const uint8_t> accessUnit, bool isIdr) {
                              videoSpool_.append(accessUnit, encodedFrame_++, 1, isIdr);
                            });
      if (audio_)
        audioEncoder_.emplace(encoderSettings(*audio_),
                              [this](std::span<const uint8_t> packet, int64_t time, int64_t duration) {
                                audioSpool_.append(packet, time, duration, true);
                              });
    } catch (const std::exception& failure) {
      fail(failure.what());
      return false;
    }
    setStatus(Status::Writing);
    videoThread_ = std::jthread([this](const std::stop_token& stop) { guarded([&] { encodeVideo(stop); }); });
    if (audio_)
      audioThread_ =
          std::jthread([this](const std::stop_token& stop) { guarded([&] { encodeAudio(stop); }); });
    return true;
  }

  [[nodiscard]] bool isReadyForMoreVideo() const override {
    const std::lock_guard lock(mutex_);
    return pictures_.size() < picturesInQueue;
  }

  [[nodiscard]] bool isReadyForMoreAudio() const override {
    const std::lock_guard lock(mutex_);
    return sounds_.size() < soundsInQueue;
  }

  bool appendFrame(const QImage& picture, qint64 frameIndex) override {
    if (!video_ || picture.width() != video_->width || picture.height() != video_->height) return false;
    const std::lock_guard lock(mutex_);
    if (status_ != Status::Writing || videoFinished_ || frameIndex < nextFrame_) return false;
    const bool isRepeat = lastPictureKey_ == picture.cacheKey();
    if (isRepeat && frameIndex == nextFrame_ && !pictures_.empty())
      ++pictures_.back().frames;
    else
      pictures_.push_back({isRepeat ? QImage() : picture, frameIndex, 1});
    lastPictureKey_ = picture.cacheKey();
    nextFrame_ = frameIndex + 1;
    changed_.notify_all();
    return true;
  }

  bool appendAudio(const AudioChunk& chunk) override {
    if (!audio_ || chunk.frames < 1 || chunk.pcm.size() != chunk.frames * audio_->channels * bytesPerSample)
      return false;
    const bool silent = isSilent(chunk.pcm);
    const std::lock_guard lock(mutex_);
    if (status_ != Status::Writing || audioFinished_ || chunk.presentationTime < nextSound_) return false;
    appendSilence(chunk.presentationTime - nextSound_);
    if (silent)
      appendSilence(chunk.frames);
    else
      sounds_.push_back({chunk.pcm, 0});
    nextSound_ = chunk.presentationTime + chunk.frames;
    changed_.notify_all();
    return true;
  }

  void markVideoFinished() override {
    const std::lock_guard lock(mutex_);
    videoFinished_ = true;
    changed_.notify_all();
  }

  void markAudioFinished() override {
    const std::lock_guard lock(mutex_);
    audioFinished_ = true;
    changed_.notify_all();
  }

  void finishWriting(std::function<void()> completion) override {
    Q_ASSERT(!finishingThread_.joinable());
    markVideoFinished();
    markAudioFinished();
    finishingThread_ = std::jthread([this, completion = std::move(completion)](const std::stop_token& stop) {
      if (videoThread_.joinable()) videoThread_.join();
      if (audioThread_.joinable()) audioThread_.join();
      if (stop.stop_requested()) return;
      if (status() == Status::Writing) guarded([this] { writeMovie(); });
      QMetaObject::invokeMethod(&completionContext_, completion, Qt::QueuedConnection);
    });
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

  void setStatus(Status status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
  }

  template <typename Step>
  void guarded(Step step) {
    try {
      step();
    } catch (const std::bad_alloc&) {
      fail("not enough memory");
    } catch (const std::exception& failure) {
      fail(failure.what());
    }
  }

  /// From here on all that is appended is refused, and the queues stay ready, so that nobody waits for room.
  void fail(const char* cause) {
    const std::lock_guard lock(mutex_);
    if (status_ == Status::Failed) return;
    status_ = Status::Failed;
    errorText_ = couldNotWrite(path_, cause);
    pictures_.clear();
    sounds_.clear();
    file_.remove();
    changed_.notify_all();
  }

  void appendSilence(qint64 frames) {
    if (frames == 0) return;
    if (!sounds_.empty() && sounds_.back().silentFrames > 0)
      sounds_.back().silentFrames += frames;
    else
      sounds_.push_back({{}, frames});
  }

  /// The first of the queue; nothing when there is none to come.
  template <typename T>
  std::optional<T> take(std::deque<T>& queue, const bool& finished, const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, stop, [&] { return !queue.empty() || finished || status_ != Status::Writing; });
    if (stop.stop_requested() || status_ != Status::Writing || queue.empty()) return std::nullopt;
    T first = std::move(queue.front());
    queue.pop_front();
    return first;
  }

  void encodeVideo(const std::stop_token& stop) {
    YuvPicture picture(video_->width, video_->height);
    while (std::optional<PictureRun> run = take(pictures_, videoFinished_, stop)) {
      encodedFrame_ = run->firstFrame;
      if (!run->shown.isNull()) {
        const QImage rgb = std::move(run->shown).convertToFormat(QImage::Format_RGB32);
        picture.setFromRgb(reinterpret_cast<const uint32_t*>(rgb.constBits()), rgb.bytesPerLine() / 4);
        videoEncoder_->show(picture);
        --run->frames;
      }
      for (; run->frames > 0 && !stop.stop_requested(); --run->frames) videoEncoder_->hold(picture);
    }
  }

  void encodeAudio(const std::stop_token& stop) {
    std::vector<int16_t> samples;
    while (const std::optional<Sound> sound = take(sounds_, audioFinished_, stop)) {
      audioEncoder_->appendSilence(sound->silentFrames);
      samples.resize(static_cast<size_t>(sound->pcm.size() / bytesPerSample));
      qFromLittleEndian<int16_t>(sound->pcm.constData(), static_cast<qsizetype>(samples.size()),
                                 samples.data());
      audioEncoder_->append(samples);
    }
    if (!stop.stop_requested()) audioEncoder_->finish();
  }

  void writeMovie() {
    const Mp4VideoTrack video{video_->width, video_->height, video_->framesPerSecond,
                              videoEncoder_->decoderConfiguration(), videoSpool_};
    std::optional<Mp4AudioTrack> audio;
    if (audio_) {
      const auto configuration = audioEncoder_->decoderConfiguration();
      audio.emplace(Mp4AudioTrack{audio_->sampleRate,
                                  audio_->channels,
                                  audio_->bitRate,
                                  audioEncoder_->packetSamples(),
                                  audioEncoder_->priming(),
                                  {configuration.begin(), configuration.end()},
                                  audioSpool_});
    }
    if (videoSpool_.samples().empty()) throw MovieFailure("there is no picture to write");
    writeMp4(file_.fd(), video, audio ? &*audio : nullptr);
    file_.close();
    setStatus(Status::Completed);
  }

  const QString path_;
  const std::string folder_;
  MovieFile file_;
  QObject completionContext_;
  std::optional<VideoSettings> video_;
  std::optional<AudioSettings> audio_;

  // One thread each, then the finishing thread.
  SampleSpool videoSpool_{folder_};
  SampleSpool audioSpool_{folder_};
  std::optional<HeldPictureEncoder> videoEncoder_;
  std::optional<AacEncoder> audioEncoder_;
  int64_t encodedFrame_ = 0;

  // Calling thread alone, but for what `mutex_` guards below.
  mutable std::mutex mutex_;
  std::condition_variable_any changed_;
  Status status_ = Status::Unknown;
  QString errorText_;
  std::deque<PictureRun> pictures_;
  std::deque<Sound> sounds_;
  bool videoFinished_ = false;
  bool audioFinished_ = false;
  qint64 nextFrame_ = 0;
  qint64 nextSound_ = 0;
  std::optional<qint64> lastPictureKey_;

  std::jthread videoThread_;
  std::jthread audioThread_;
  std::jthread finishingThread_;
};

}  // namespace

std::unique_ptr<MovieWriter> makeMovieWriter(const QString& path) {
  try {
    return std::make_unique<FileMovieWriter>(path);
  } catch (const MovieFailure& failure) {
    throw Error(couldNotWrite(path, failure.what()));
  }
}

}  // namespace brisklet
