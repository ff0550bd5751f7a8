#include "export/video_exporter.h"

#include "export/event_loop.h"
#include "lockscreen/lock_screen_view.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "support/decoded_movie.h"
#include "support/documents.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QtEndian>
#include <cmath>
#include <limits>
#include <vector>

namespace brisklet {
namespace {

/// What an export asked of its writer, and what the writer should answer.
struct Script {
  bool takesVideo = true;
  bool takesAudio = true;
  bool starts = true;
  MovieWriter::Status finalStatus = MovieWriter::Status::Completed;
  QString errorText;

  VideoSettings video;
  AudioSettings audio;
  std::vector<qint64> frames;
  std::vector<qint64> pictures;
  std::vector<AudioChunk> chunks;
  QStringList steps;
};

class ScriptedWriter : public MovieWriter {
 public:
  explicit ScriptedWriter(Script& script) : script_(script) {}

  bool canAddVideo(const VideoSettings&) const override { return script_.takesVideo; }
  void addVideo(const VideoSettings& settings) override { script_.video = settings; }
  bool canAddAudio(const AudioSettings&) const override { return script_.takesAudio; }
  void addAudio(const AudioSettings& settings) override { script_.audio = settings; }
  bool startWriting() override {
    script_.steps.append("start");
    return script_.starts;
  }
  bool isReadyForMoreVideo() const override { return true; }
  bool isReadyForMoreAudio() const override { return true; }
  bool appendFrame(const QImage& picture, qint64 frameIndex, Stay) override {
    EXPECT_EQ(picture.size(), QSize(1170, 2532));
    script_.frames.push_back(frameIndex);
    script_.pictures.push_back(picture.cacheKey());
    return false;  // what becomes of a frame is not the exporter's business
  }
  bool appendAudio(const AudioChunk& chunk) override {
    script_.chunks.push_back(chunk);
    return true;
  }
  void markVideoFinished() override { script_.steps.append("video finished"); }
  void markAudioFinished() override { script_.steps.append("audio finished"); }
  void finishWriting(std::function<void()> completion) override {
    script_.steps.append("finish");
    QTimer::singleShot(0, completion);
  }
  Status status() const override { return script_.finalStatus; }
  QString errorText() const override { return script_.errorText; }

 private:
  Script& script_;
};

struct VideoExporterTest : testing::Test {
  QTemporaryDir directory;
  QString path = directory.filePath("movie.mp4");
  Script script;

  /// The error that the export ended with; "" when it succeeded.
  QString exported(const SequenceDocument& document, std::stop_token stop = {},
                   const VideoExporter::Progress& progress = {}) {
    try {
      waitForTask(VideoExporter::exportMovie(document, {}, path, progress, stop, [this](OutputFile) {
        return std::make_unique<ScriptedWriter>(script);
      }));
      return {};
    } catch (const Error& error) {
      return error.text();
    }
  }

  QString file(const QString& name) const { return directory.filePath(name); }

  QByteArray read(const QString& name) const {
    QFile in(file(name));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
  }

  void writeOldFile() {
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
  }

  QStringList entries() const { return QDir(directory.path()).entryList(QDir::Files | QDir::Hidden); }

  QString savedPhoto(const QColor& color) const {
    QImage photo(300, 650, QImage::Format_RGB32);
    photo.fill(color);
    EXPECT_TRUE(photo.save(file("photo.png")));
    return file("photo.png");
  }
};

TEST_F(VideoExporterTest, anEmptyDocumentIsSeventyTwoEqualFramesAndSilence) {
  qint64 lastDone = 0;
  qint64 inAll = 0;
  EXPECT_EQ(exported(documentOf({}), {},
                     [&](qint64 done, qint64 frames) {
                       EXPECT_EQ(done, lastDone + 1);
                       lastDone = done;
                       inAll = frames;
                     }),
            "");
  EXPECT_EQ(lastDone, 72);
  EXPECT_EQ(inAll, 72);
  ASSERT_EQ(script.frames.size(), 72u);
  for (std::size_t i = 0; i < 72; ++i) {
    EXPECT_EQ(script.frames[i], static_cast<qint64>(i));
    EXPECT_EQ(script.pictures[i], script.pictures[0]);
  }
  EXPECT_EQ(script.steps, (QStringList{"start", "video finished", "audio finished", "finish"}));
  EXPECT_EQ(script.video.averageBitRate, 8000000);
  EXPECT_EQ(script.audio.bitRate, 128000);

  ASSERT_EQ(script.chunks.size(), 26u);
  EXPECT_EQ(script.chunks[1].presentationTime, 4096);
  EXPECT_EQ(script.chunks[24].frames, 4096);
  EXPECT_EQ(script.chunks[25].frames, 3440);
  EXPECT_EQ(script.chunks[25].presentationTime, 102400);
  EXPECT_EQ(script.chunks[25].pcm, QByteArray(3440 * 4, 0));
}

TEST_F(VideoExporterTest, thePictureChangesAtTheFirstFrameNotBeforeALanding) {
  // 33.333... ms is frame 1; 1000 ms is exactly frame 30; out of order and together with another.
  EXPECT_EQ(exported(documentOf({1000, 33, 500.1, 500.1, 2300})), "");
  EXPECT_EQ(script.frames.size(), 122u);
  std::vector<std::size_t> changes;
  for (std::size_t i = 1; i < script.pictures.size(); ++i) {
    if (script.pictures[i] != script.pictures[i - 1]) changes.push_back(i);
  }
  EXPECT_EQ(changes, (std::vector<std::size_t>{1, 16, 30, 69}));
}

TEST_F(VideoExporterTest, whatTheWriterRefusesEndsAsItShould) {
  script.takesAudio = false;
  EXPECT_EQ(exported(documentOf({})), "");
  EXPECT_EQ(script.steps, (QStringList{"start", "video finished", "finish"}));

  script = {};
  script.takesVideo = false;
  EXPECT_EQ(exported(documentOf({})), "Could not write the video file.");
  EXPECT_EQ(script.steps, QStringList());

  script = {};
  script.starts = false;
  EXPECT_EQ(exported(documentOf({})), "Could not write the video file.");

  script = {};
  script.finalStatus = MovieWriter::Status::Failed;
  EXPECT_EQ(exported(documentOf({})), "Could not write the video file.");
  script.errorText = "Could not write \"movie.mp4\": no space left on the device.";
  EXPECT_EQ(exported(documentOf({})), script.errorText);
}

TEST_F(VideoExporterTest, stoppingEndsTheExportAndLeavesNothing) {
  writeOldFile();
  std::stop_source stop;
  const auto progress = [&](qint64 done, qint64) {
    EXPECT_EQ(entries(), QStringList()) << "the old movie goes when the export begins";
    if (done == 10) stop.request_stop();
  };
  EXPECT_THROW(
      waitForTask(VideoExporter::exportMovie(documentOf({100}), {}, path, progress, stop.get_token())),
      ExportCancelled);
  EXPECT_EQ(entries(), QStringList());
}

TEST_F(VideoExporterTest, whatCannotBeAMovieIsRefusedBeforeTheOldFileIsTouched) {
  writeOldFile();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(exported(documentOf({infinity})).contains("never ends"));
  EXPECT_TRUE(exported(documentOf({std::nan("")})).contains("never ends"));
  EXPECT_TRUE(exported(documentOf({25 * 3600000.0})).contains("is 25 hours long; a movie can have 24"));
  EXPECT_TRUE(exported(documentOf({24 * 3600000.0})).contains("is more than 24 hours long"));
  EXPECT_EQ(VideoExporter::frameCount(documentOf({-1e9})), 1);

  SequenceDocument document = documentOf({});
  document.wallpaper = "custom";
  document.wallpaperUrl = file("./movie.mp4");
  ASSERT_TRUE(QFile::link("movie.mp4", file("link")));
  path = file("link");
  EXPECT_TRUE(exported(document).contains("wallpaper photo"));
  EXPECT_EQ(read("movie.mp4"), "old");
}

TEST_F(VideoExporterTest, theMovieShowsWhatTheLockScreenPaintsAndSoundsWhatTheTonesSay) {
  SequenceDocument document = documentOf({500, 900});
  document.wallpaper = "three";
  waitForTask(VideoExporter::exportMovie(document, {}, path));
  const DecodedMovie movie = decodedMovie(path);

  ASSERT_EQ(movie.frames.size(), 81u);  // 2700 ms
  for (std::size_t i = 0; i < movie.frames.size(); ++i)
    ASSERT_EQ(movie.frames[i].time, static_cast<qint64>(i));
  EXPECT_EQ(movie.changes(), (std::vector<qint64>{15, 27}));

  SequencePlayer player(document);
  LockScreenCache cache;
  for (const std::size_t frame : {0u, 15u, 27u, 80u}) {
    player.setElapsedMs(static_cast<double>(frame) / 30 * 1000);
    const QImage painted = captureFrame({document, player, Rendering::Movie}, cache);
    EXPECT_GE(lumaPsnr(movie.pictureAt(frame), painted), 46) << frame;
  }

  ASSERT_EQ(movie.channels.size(), 2u);
  const std::vector<float>& left = movie.channels[0];
  const QByteArray pcm = NotificationSounds::stereoPCM(document);
  EXPECT_GE(left.size(), static_cast<std::size_t>(pcm.size() / 4));
  // The tones begin where their pings land, to the millisecond.
  for (const std::size_t onset : {22050u, 39690u}) {
    std::size_t heard = onset - 2205, meant = onset;
    while (heard < left.size() && std::abs(left[heard]) < 0.01f) ++heard;
    while (std::abs(qFromLittleEndian<qint16>(pcm.constData() + meant * 4)) < 328) ++meant;
    EXPECT_NEAR(static_cast<double>(heard), static_cast<double>(meant), 44) << onset;
  }
}

TEST_F(VideoExporterTest, aMovieHasOneWallpaperWhateverHappensToThePhoto) {
  SequenceDocument document = documentOf({100, 600});
  document.wallpaper = "custom";
  const std::function<void()> events[] = {[this] { savedPhoto(Qt::blue); },
                                          [this] { EXPECT_TRUE(QFile::remove(file("photo.png"))); }};
  for (const auto& event : events) {
    document.wallpaperUrl = savedPhoto(Qt::red);
    waitForTask(VideoExporter::exportMovie(document, {}, path, [&event](qint64 framesDone, qint64) {
      if (framesDone == 10) event();
    }));
    const DecodedMovie movie = decodedMovie(path);
    EXPECT_EQ(movie.changes(), (std::vector<qint64>{3, 18}));
    const QColor color = movie.pictureAt(movie.frames.size() - 1).rgb(600, 1900);
    EXPECT_GT(color.red(), 200);
    EXPECT_LT(color.blue(), 50);
  }
}

TEST_F(VideoExporterTest, exportsAtOnceAreTheSameAsOneAfterTheOtherAndTakeNothingForGood) {
  const SequenceDocument first = documentOf({100, 700}), second = documentOf({300});
  waitForTask(VideoExporter::exportMovie(first, {}, file("a.mp4")));
  waitForTask(VideoExporter::exportMovie(second, {}, file("b.mp4")));
  const auto taken = [](const QString& what) {
    return QDir("/proc/self/" + what).entryList(QDir::AllEntries | QDir::System).size();
  };
  const qsizetype files = taken("fd"), threads = taken("task");
  QCoro::Task<> a = VideoExporter::exportMovie(first, {}, file("a at once.mp4"));
  QCoro::Task<> b = VideoExporter::exportMovie(second, {}, path);
  QCoro::Task<> c = VideoExporter::exportMovie(second, {}, path);
  for (QCoro::Task<>* task : {&a, &b, &c}) waitForTask(std::move(*task));
  EXPECT_TRUE(read("a at once.mp4") == read("a.mp4"));
  EXPECT_TRUE(read("movie.mp4") == read("b.mp4"));
  EXPECT_EQ(taken("fd"), files);
  EXPECT_EQ(taken("task"), threads);
  EXPECT_EQ(entries(), (QStringList{"a at once.mp4", "a.mp4", "b.mp4", "movie.mp4"}));
}

}  // namespace
}  // namespace brisklet
