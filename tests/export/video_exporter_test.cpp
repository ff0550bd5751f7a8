#include "export/video_exporter.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <cmath>
#include <limits>
#include <vector>

#include "base/wait_for_task.h"
#include "support/printing.h"

namespace brisklet {
namespace {

/// What an export asked of its writer, and what the writer should answer.
struct Script {
  bool takesVideo = true;
  bool takesAudio = true;
  bool starts = true;
  MovieWriter::Status finalStatus = MovieWriter::Status::Completed;
  QString errorText;
  /// How often the video input is asked before it is ready once.
  int asksPerFrame = 1;

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
  bool isReadyForMoreVideo() const override { return ++asks_ % script_.asksPerFrame == 0; }
  bool isReadyForMoreAudio() const override { return true; }
  bool appendFrame(const QImage& picture, qint64 frameIndex) override {
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
  void removeFile() override { script_.steps.append("remove"); }
  Status status() const override { return script_.finalStatus; }
  QString errorText() const override { return script_.errorText; }

 private:
  Script& script_;
  mutable int asks_ = 0;
};

SequenceDocument documentWithDelays(const QList<double>& delays) {
  SequenceDocument document = SequenceDocument::blank();
  for (const double delayMs : delays) {
    Ping ping;
    ping.id = QString::number(document.notifications.size());
    ping.appId = "messages";
    ping.delayMs = delayMs;
    document.notifications.append(ping);
  }
  return document;
}

struct VideoExporterTest : testing::Test {
  QTemporaryDir directory;
  QString path = directory.filePath("movie.mp4");
  Script script;

  /// The error that the export ended with; "" when it succeeded.
  QString exported(const SequenceDocument& document, std::stop_token stop = {},
                   const VideoExporter::Progress& progress = {}) {
    try {
      waitForTask(VideoExporter::exportMovie(document, path, progress, stop, [this](const QString&) {
        return std::make_unique<ScriptedWriter>(script);
      }));
      return {};
    } catch (const Error& error) {
      return error.text();
    }
  }

  void writeOldFile() {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("old");
  }
};

TEST_F(VideoExporterTest, anEmptyDocumentIsSeventyTwoEqualFramesAndSilence) {
  qint64 lastDone = 0;
  qint64 inAll = 0;
  EXPECT_EQ(exported(documentWithDelays({}), {},
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
  EXPECT_EQ(exported(documentWithDelays({1000, 33, 500.1, 500.1, 2300})), "");
  EXPECT_EQ(script.frames.size(), 122u);
  std::vector<std::size_t> changes;
  for (std::size_t i = 1; i < script.pictures.size(); ++i) {
    if (script.pictures[i] != script.pictures[i - 1]) changes.push_back(i);
  }
  EXPECT_EQ(changes, (std::vector<std::size_t>{1, 16, 30, 69}));
}

TEST_F(VideoExporterTest, aLandingThatShowsNothingNewIsNoNewPicture) {
  SequenceDocument document = documentWithDelays({500, 1000});
  document.maxVisible = 1;
  std::swap(document.notifications[0], document.notifications[1]);  // the newest in the document lands first
  EXPECT_EQ(exported(document), "");
  EXPECT_EQ(script.pictures[15], script.pictures.back());
  EXPECT_NE(script.pictures[14], script.pictures[15]);
}

TEST_F(VideoExporterTest, whatTheWriterRefusesEndsAsItShould) {
  script.takesAudio = false;
  EXPECT_EQ(exported(documentWithDelays({})), "");
  EXPECT_EQ(script.steps, (QStringList{"start", "video finished", "finish"}));

  script = {};
  script.takesVideo = false;
  EXPECT_EQ(exported(documentWithDelays({})), "Could not write the video file.");
  EXPECT_EQ(script.steps, QStringList("remove"));

  script = {};
  script.starts = false;
  EXPECT_EQ(exported(documentWithDelays({})), "Could not write the video file.");

  script = {};
  script.finalStatus = MovieWriter::Status::Failed;
  EXPECT_EQ(exported(documentWithDelays({})), "Could not write the video file.");
  script.errorText = "Could not write \"movie.mp4\": no space left on the device.";
  EXPECT_EQ(exported(documentWithDelays({})), script.errorText);
}

TEST_F(VideoExporterTest, theEventLoopKeepsTurningWhetherTheWriterIsBusyOrNot) {
  for (const int asks : {1, 4}) {
    script = {};
    script.asksPerFrame = asks;
    int turns = 0;
    int turnsBeforeTheLastFrame = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&turns] { ++turns; });
    timer.start(0);
    EXPECT_EQ(exported(documentWithDelays({500, 1000, 1500}), {},
                       [&](qint64, qint64) { turnsBeforeTheLastFrame = turns; }),
              "");
    EXPECT_EQ(script.frames.size(), 99u);
    // A writer that is always ready gives no reason to wait, but painting the first picture takes longer than
    // a turn may.
    EXPECT_GE(turnsBeforeTheLastFrame, asks == 1 ? 1 : 98 * (asks - 1));
  }
}

TEST_F(VideoExporterTest, stoppingEndsTheExportAndLeavesThePartialFile) {
  script.asksPerFrame = 2;
  std::stop_source stop;
  QString error = exported(documentWithDelays({}), stop.get_token(), [&](qint64 done, qint64) {
    if (done == 10) {
      writeOldFile();  // stands for what the writer has written so far
      stop.request_stop();
    }
  });
  EXPECT_EQ(error, "The export was stopped.");
  EXPECT_EQ(script.frames.size(), 10u);
  EXPECT_EQ(script.steps, QStringList("start"));
  EXPECT_TRUE(QFile::exists(path));
}

TEST_F(VideoExporterTest, aDocumentWithoutAnEndIsRefusedBeforeTheOldFileIsTouched) {
  writeOldFile();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(exported(documentWithDelays({infinity})).contains("never ends"));
  EXPECT_TRUE(exported(documentWithDelays({std::nan("")})).contains("never ends"));
  EXPECT_TRUE(exported(documentWithDelays({86400000})).contains("24"));
  EXPECT_TRUE(QFile::exists(path));
  EXPECT_EQ(VideoExporter::frameCount(documentWithDelays({-1e9})), 1);
}

TEST_F(VideoExporterTest, onlyAPlainFileThatIsNotThePhotoIsReplaced) {
  path = directory.path();
  EXPECT_TRUE(exported(documentWithDelays({})).contains("is a directory"));
  EXPECT_TRUE(QFile::exists(path));
  path = "/dev/null";
  EXPECT_TRUE(exported(documentWithDelays({})).contains("not a regular file"));

  path = directory.filePath("photo.jpg");
  writeOldFile();
  SequenceDocument document = documentWithDelays({});
  document.wallpaper = "custom";
  document.wallpaperUrl = directory.filePath("./photo.jpg");
  EXPECT_TRUE(exported(document).contains("wallpaper photo"));
  EXPECT_TRUE(QFile::exists(path));
}

}  // namespace
}  // namespace brisklet
