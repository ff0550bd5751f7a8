#include "movie/movie_writer.h"

#include "support/decoded_movie.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <span>

namespace brisklet {
namespace {

constexpr AudioSettings stereo{.sampleRate = 44100, .channels = 2, .bitRate = 128000};

/// Detail everywhere, and a block of its own for each number.
QImage numbered(int number, QSize size = {128, 96}) {
  QImage picture(size, QImage::Format_RGB32);
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x)
      picture.setPixel(x, y, qRgb(60 + x % 64 + y % 7 * 9, 90 + (x * y) % 50, 40 + y));
  QPainter painter(&picture);
  painter.fillRect(16 * (number % 6), 16 * (number / 6 % 5), 20, 20,
                   QColor::fromHsv(number * 37 % 360, 160, 220));
  return picture;
}

/// Whole frames, silent but for a tone of 880 Hz from `onset` on.
QByteArray toneFrom(qint64 onset, qint64 frames) {
  QByteArray pcm(frames * 4, 0);
  for (qint64 i = onset; i < std::min(frames, onset + 8000); ++i) {
    const double level = 12000 * std::sin(2 * M_PI * 880 * static_cast<double>(i - onset) / 44100);
    for (const int channel : {0, 2})
      qToLittleEndian(static_cast<qint16>(level), pcm.data() + 4 * i + channel);
  }
  return pcm;
}

struct MovieWriterTest : testing::Test {
  QTemporaryDir folder;
  QString path = folder.filePath("movie.mp4");

  static void appendFrames(MovieWriter& writer, const QList<QImage>& frames) {
    for (qsizetype i = 0; i < frames.size(); ++i) {
      while (!writer.isReadyForMoreVideo()) QThread::msleep(1);
      writer.appendFrames(frames[i], i, 1, Stay::Long);
    }
    writer.markVideoFinished();
  }

  static void appendSound(MovieWriter& writer, const QByteArray& pcm) {
    for (qint64 offset = 0; offset < pcm.size() / 4; offset += 4096) {
      while (!writer.isReadyForMoreAudio()) QThread::msleep(1);
      const QByteArray piece = pcm.mid(offset * 4, qsizetype{4096} * 4);
      writer.appendAudio({piece, piece.size() / 4, offset});
    }
    writer.markAudioFinished();
  }

  static void finish(MovieWriter& writer) {
    bool finished = false;
    writer.finishWriting([&] { finished = true; });
    EXPECT_FALSE(finished);
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished; }, 30000));
  }

  /// Writes a movie; returns the writer's complaint.
  [[nodiscard]] QString written(const QList<QImage>& frames, const QByteArray& pcm = {}) {
    const auto writer = makeMovieWriter(OutputFile(path));
    writer->addVideo({frames[0].width(), frames[0].height(), 30, 8000000});
    if (!pcm.isEmpty()) writer->addAudio(stereo);
    if (writer->startWriting()) {
      appendFrames(*writer, frames);
      if (!pcm.isEmpty()) appendSound(*writer, pcm);
      finish(*writer);
    }
    EXPECT_EQ(writer->status(),
              writer->errorText().isEmpty() ? MovieWriter::Status::Completed : MovieWriter::Status::Failed);
    return writer->errorText();
  }

  [[nodiscard]] QByteArray fileBytes() const {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
};

TEST_F(MovieWriterTest, theFileIsWhatPlayersExpect) {
  QList<QImage> frames;
  for (int i = 0; i < 90; ++i) frames.append(i % 30 == 0 ? numbered(i / 30) : frames.last());
  ASSERT_EQ(written(frames, toneFrom(22050, 132300)), "");

  const DecodedMovie movie = decodedMovie(path);
  EXPECT_LT(fileBytes().indexOf("moov"), fileBytes().indexOf("mdat"));
  EXPECT_TRUE(fileBytes().contains("colrnclx" + QByteArray::fromHex("00010001000100"))) << "BT.709, limited";
  EXPECT_EQ(QSize(movie.width, movie.height), QSize(128, 96));
  EXPECT_EQ(movie.video, "h264 High yuv420p tv bt709");
  EXPECT_EQ(movie.audio, "aac LC 44100");
  EXPECT_EQ(movie.channels.size(), 2u);
  EXPECT_LE(movie.interleavingGap, 1.1);
  for (const char* trace : {"x264", "Lavc", "Lavf"}) EXPECT_FALSE(fileBytes().contains(trace)) << trace;
  EXPECT_GT(fileBytes().indexOf("edts"), fileBytes().indexOf("vmhd")) << "the sound alone has an edit list";
}

TEST_F(MovieWriterTest, everyFrameStandsAtItsTimeAndPicturesChangeWhenTheyAreAppended) {
  QList<QImage> frames;
  const std::vector<int> changesAt = {0, 1, 2, 40, 149, 150, 151, 170, 299, 320, 330};
  for (int i = 0, picture = -1; i < 700; ++i) {
    if (std::find(changesAt.begin(), changesAt.end(), i) != changesAt.end())
      frames.append(numbered(++picture));
    else
      frames.append(frames.last());
  }
  ASSERT_EQ(written(frames), "");
  const DecodedMovie movie = decodedMovie(path);
  ASSERT_EQ(movie.frames.size(), 700u);
  EXPECT_TRUE(movie.frames[0].isKey);
  qint64 lastKey = 0;
  for (std::size_t i = 0; i < movie.frames.size(); ++i) {
    EXPECT_EQ(movie.frames[i].time, static_cast<qint64>(i));
    if (movie.frames[i].isKey) lastKey = static_cast<qint64>(i);
    EXPECT_LT(static_cast<qint64>(i) - lastKey, 150);
    EXPECT_GE(lumaPsnr(movie.pictureAt(i), frames[static_cast<qsizetype>(i)]), 46) << i;
  }
  // A key frame may differ from the same picture predicted, the repeats of either never.
  for (const qint64 change : movie.changes())
    EXPECT_TRUE(movie.frames[static_cast<std::size_t>(change)].isKey ||
                std::find(changesAt.begin(), changesAt.end(), change) != changesAt.end())
        << change;
  EXPECT_LT(fileBytes().size(), 200000);
}

TEST_F(MovieWriterTest, theSoundStartsWhereItWasAppended) {
  // Around the borders of a packet (1024 samples), after long silence, and at once.
  for (const qint64 onset : {0, 1023, 44100, 200000}) {
    ASSERT_EQ(written({numbered(0)}, toneFrom(onset, 220500)), "");
    const DecodedMovie movie = decodedMovie(path);
    ASSERT_EQ(movie.channels.size(), 2u);
    for (const std::vector<float>& channel : movie.channels) {
      EXPECT_EQ(channel.size(), 220500u);
      const auto heard =
          std::find_if(channel.begin(), channel.end(), [](float s) { return std::abs(s) > 0.1; });
      EXPECT_NEAR(static_cast<double>(heard - channel.begin()), static_cast<double>(onset), 44) << "1 ms";
      const auto tail = std::span(channel).subspan(static_cast<std::size_t>(onset) + 8000 + 2048);
      EXPECT_TRUE(std::all_of(tail.begin(), tail.end(), [](float s) { return std::abs(s) < 0.001; }));
    }
  }
}

}  // namespace
}  // namespace brisklet
