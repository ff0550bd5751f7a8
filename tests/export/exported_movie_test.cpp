#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <cmath>

#include "base/wait_for_task.h"
#include "export/video_exporter.h"
#include "lockscreen/lock_screen_view.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "support/decoded_movie.h"
#include "support/printing.h"

namespace brisklet {
namespace {

SequenceDocument twoPings() {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = "Mon Nov 16";
  document.wallpaper = "three";
  for (const double delayMs : {500.0, 900.0}) {
    Ping ping;
    ping.id = QString::number(delayMs);
    ping.appId = delayMs == 500 ? "messages" : "snapchat";
    ping.title = "Mom";
    ping.message = QString::fromUtf8("look \U0001F525");
    ping.delayMs = delayMs;
    document.notifications.append(ping);
  }
  return document;
}

TEST(ExportedMovie, showsWhatTheLockScreenPaintsAndSoundsWhatTheTonesSay) {
  QTemporaryDir directory;
  const QString path = directory.filePath("movie.mp4");
  QFile old(path);
  ASSERT_TRUE(old.open(QIODevice::WriteOnly));
  old.write(QByteArray(1 << 20, 'x'));
  old.close();

  const SequenceDocument document = twoPings();
  waitForTask(VideoExporter::exportMovie(document, path));
  const DecodedMovie movie = decodedMovie(path);

  ASSERT_EQ(movie.frames.size(), 81u);  // 2700 ms
  for (std::size_t i = 0; i < movie.frames.size(); ++i)
    ASSERT_EQ(movie.frames[i].time, static_cast<qint64>(i));
  EXPECT_EQ(movie.changes(), (std::vector<qint64>{15, 27}));
  EXPECT_EQ(QSize(movie.width, movie.height), QSize(1170, 2532));
  EXPECT_LT(movie.boxes.indexOf("moov"), movie.boxes.indexOf("mdat"));

  SequencePlayer player(document);
  LockScreenCache cache;
  for (const std::size_t frame : {0u, 15u, 27u, 80u}) {
    player.setElapsedMs(static_cast<double>(frame) / 30 * 1000);
    const QImage painted = captureFrame({document, player, CaptureMode::Capture}, cache);
    EXPECT_GE(lumaPsnr(movie.pictureAt(frame), painted), 46) << frame;
  }

  ASSERT_TRUE(movie.hasAudio);
  ASSERT_EQ(movie.channels.size(), 2u);
  const std::vector<float>& left = movie.channels[0];
  const QByteArray pcm = NotificationSounds::stereoPCM(document);
  EXPECT_GE(left.size(), static_cast<std::size_t>(pcm.size() / 4));
  // An encoder that keeps what is heard keeps the loudness of every stretch of sound, and silence silent.
  const auto loudness = [](auto&& sample, std::size_t first) {
    double sum = 0;
    for (std::size_t i = first; i < first + 441; ++i) sum += sample(i) * sample(i);
    return std::sqrt(sum / 441);
  };
  const auto decoded = [&left](std::size_t i) { return static_cast<double>(left[i]); };
  const auto synthesised = [&pcm](std::size_t i) {
    return static_cast<double>(qFromLittleEndian<qint16>(pcm.constData() + i * 4)) / 32767;
  };
  for (std::size_t first = 0; first + 441 < 60000; first += 441)
    EXPECT_NEAR(loudness(decoded, first), loudness(synthesised, first), 0.01) << first;
  // Onsets to the millisecond: 22050 is the first sample of the first tone, 39690 of the second.
  for (const std::size_t onset : {22050u, 39690u}) {
    std::size_t heard = onset - 2205;
    while (heard < left.size() && std::abs(left[heard]) < 0.01f) ++heard;
    std::size_t meant = onset;
    while (std::abs(synthesised(meant)) < 0.01) ++meant;
    EXPECT_NEAR(static_cast<double>(heard), static_cast<double>(meant), 44) << onset;
  }
}

TEST(ExportedMovie, aFailureNamesTheFileAndLeavesNone) {
  QTemporaryDir directory;
  const QString path = directory.filePath("missing/movie.mp4");
  try {
    waitForTask(VideoExporter::exportMovie(twoPings(), path));
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.text().contains("movie.mp4")) << error.text().toStdString();
    EXPECT_TRUE(error.text().contains("folder does not exist")) << error.text().toStdString();
  }
}

}  // namespace
}  // namespace brisklet
