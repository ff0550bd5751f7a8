#include "export/video_exporter.h"

#include "export/event_loop.h"
#include "lockscreen/lock_screen_view.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "support/decoded_movie.h"
#include "support/documents.h"
#include "support/errors.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <cmath>
#include <limits>
#include <utility>

namespace brisklet {
namespace {

struct VideoExporterTest : testing::Test {
  QTemporaryDir directory;
  QString path = directory.filePath("movie.mp4");

  /// The error that the export ended with; "" when it succeeded.
  QString exported(const SequenceDocument& document) {
    return errorOf([&] { waitForTask(VideoExporter::exportMovie(document, {}, path)); });
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

TEST_F(VideoExporterTest, stoppingEndsTheExportAndLeavesNothing) {
  writeOldFile();
  std::stop_source stop;
  const auto progress = [&](qint64 done, qint64) {
    EXPECT_EQ(entries(), QStringList()) << "the old movie goes when the export begins";
    if (done > 1) stop.request_stop();
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
  EXPECT_EQ(ExportError().text(), "Could not write the video file.");

  SequenceDocument document = documentOf({});
  document.wallpaper = "custom";
  document.wallpaperUrl = file("./movie.mp4");
  ASSERT_TRUE(QFile::link("movie.mp4", file("link")));
  path = file("link");
  EXPECT_TRUE(exported(document).contains("wallpaper photo"));
  EXPECT_EQ(read("movie.mp4"), "old");
}

TEST_F(VideoExporterTest, theMovieShowsWhatTheLockScreenPaintsAndSoundsWhatTheTonesSay) {
  // 33.333... ms is frame 1; 900 ms is exactly frame 27; out of order and together with another.
  SequenceDocument document = documentOf({900, 33, 500, 500});
  document.wallpaper = "three";
  qint64 told = 0;
  waitForTask(VideoExporter::exportMovie(document, {}, path, [&told](qint64 framesDone, qint64 frames) {
    EXPECT_GT(framesDone, std::exchange(told, framesDone));
    EXPECT_EQ(frames, 81);
  }));
  EXPECT_EQ(told, 81);
  const DecodedMovie movie = decodedMovie(path);

  ASSERT_EQ(movie.frames.size(), 81u);  // 2700 ms
  for (std::size_t i = 0; i < movie.frames.size(); ++i)
    ASSERT_EQ(movie.frames[i].time, static_cast<qint64>(i));
  EXPECT_EQ(movie.changes(), (std::vector<qint64>{1, 15, 27}));

  SequencePlayer player(document);
  LockScreenCache cache;
  for (const std::size_t frame : {0u, 1u, 15u, 27u, 80u}) {
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
  SequenceDocument document = documentOf({100, 600, 1100, 1600});
  document.wallpaper = "custom";
  document.wallpaperUrl = savedPhoto(Qt::red);
  waitForTask(VideoExporter::exportMovie(document, {}, path, [this](qint64 framesDone, qint64) {
    if (framesDone == 10) savedPhoto(Qt::blue);
  }));
  const DecodedMovie movie = decodedMovie(path);
  EXPECT_EQ(movie.changes(), (std::vector<qint64>{3, 18, 33, 48}));
  EXPECT_GT(movie.pictureAt(movie.frames.size() - 1).crAt(600, 1900), 200) << "still red";
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
