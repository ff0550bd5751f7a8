#include "sound/notification_sounds.h"

#include <gtest/gtest.h>

#include <QtEndian>
#include <cmath>

#include "base/error.h"
#include "sound/wav_file.h"

namespace brisklet {
namespace {

using NotificationSounds::stereoPCM;
using NotificationSounds::wav;

constexpr qsizetype wavHeaderBytes = 44;

qint16 sampleAt(const QByteArray& bytes, qsizetype offset) {
  return qFromLittleEndian<qint16>(bytes.constData() + offset);
}

qint16 wavSample(const QByteArray& file, qsizetype index) {
  return sampleAt(file, wavHeaderBytes + 2 * index);
}

SequenceDocument documentWith(const QList<std::pair<QString, double>>& pings) {
  SequenceDocument document = SequenceDocument::blank();
  for (const auto& [appId, delayMs] : pings) {
    Ping ping;
    ping.appId = appId;
    ping.delayMs = delayMs;
    document.notifications.append(ping);
  }
  return document;
}

TEST(NotificationSounds, everyToneHasItsLengthAndItsFirstSample) {
  const struct {
    QString appId;
    qsizetype fileBytes;
    int firstSample;
    qsizetype lastNoteEnd;
  } rows[]{
      {"tiktok", 16360, -3, 1543 + 4851},  {"instagram", 19006, 0, 1543 + 6174},
      {"messages", 20770, 0, 1543 + 7056}, {"snapchat", 10628, 3, 3528},
      {"cashapp", 25622, -3, 3087 + 7938}, {"youtube", 19888, 0, 1543 + 6615},
      {"chat", 17242, -3, 1543 + 5292},    {"TikTok", 17242, -3, 1543 + 5292},
      {"", 17242, -3, 1543 + 5292},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.appId.toStdString());
    const QByteArray file = wav(row.appId);
    ASSERT_EQ(file.size(), row.fileBytes);
    EXPECT_EQ(wavSample(file, 0), row.firstSample);
    EXPECT_EQ(std::count_if(file.begin() + wavHeaderBytes + 2 * row.lastNoteEnd, file.end(),
                            [](char byte) { return byte != 0; }),
              0);
  }
}

TEST(NotificationSounds, theWavHeaderDescribesMonoSixteenBitSound) {
  const QByteArray file = wav("snapchat");
  const QByteArray expected = QByteArray::fromHex(
      "52494646 7c290000 57415645 666d7420 10000000 0100 0100 44ac0000 88580100 0200 1000 64617461 58290000");
  EXPECT_EQ(file.first(wavHeaderBytes).toHex(), expected.toHex());
}

TEST(NotificationSounds, theEnvelopeRisesForTwelveMillisecondsAndFallsToItsFloor) {
  // A square wave shows its envelope: 0.1 of full scale at the peak.
  const std::vector<float> tone = NotificationSounds::rendered("snapchat");
  const auto level = [&tone](std::size_t index) { return std::abs(tone[index]); };
  EXPECT_LT(level(528), level(529));
  EXPECT_LT(level(529), 0.1f);
  EXPECT_GT(level(529), 0.0998f);
  EXPECT_LT(level(530), 0.1f);
  EXPECT_GT(level(530), level(531));
  EXPECT_NEAR(level(3527), 0.0001f, 0.000001f);
  EXPECT_FLOAT_EQ(level(265), (0.1f - 0.0001f) * static_cast<float>(265 / 44100.0 / 0.012) + 0.0001f);
}

TEST(NotificationSounds, aSineHasItsFrequencyAndLaterNotesStartStaggered) {
  const std::vector<float> tone = NotificationSounds::rendered("messages");
  // Before the second note starts, the samples are the first note alone.
  for (const std::size_t j : {100u, 700u, 1542u}) {
    const double t = static_cast<double>(j) / 44100;
    const double level = t < 0.012 ? (0.22 - 0.0001) * t / 0.012 + 0.0001
                                   : 0.22 * std::pow(0.0001 / 0.22, (t - 0.012) / 0.148);
    EXPECT_NEAR(tone[j], level * std::sin(2 * M_PI * 1240 * t), 1e-5);
  }
  std::vector<float> late(tone.size());
  NotificationSounds::mix("messages", 1, late);
  EXPECT_EQ(late[43], 0);
  EXPECT_EQ(late[44 + 700], tone[700]);
}

TEST(NotificationSounds, whatFallsOutsideTheBufferIsDropped) {
  std::vector<float> buffer(100);
  NotificationSounds::mix("snapchat", 1000, buffer);
  NotificationSounds::mix("snapchat", -100000, buffer);
  for (const double atMs : {1e300, -1e300, std::nan(""), HUGE_VAL, 9.3e18})
    NotificationSounds::mix("", atMs, buffer);
  EXPECT_EQ(std::count(buffer.begin(), buffer.end(), 0.0f), 100);

  // A note cut at its start keeps its envelope but starts its wave anew.
  NotificationSounds::mix("snapchat", -10, buffer);
  EXPECT_GT(buffer[0], 0.08f);
}

TEST(Soundtrack, placesEachToneAtItsLandingSample) {
  EXPECT_EQ(stereoPCM(documentWith({})), QByteArray(423360, 0));
  EXPECT_EQ(stereoPCM(documentWith({{"tiktok", 1000}})).size(), 123479 * 4);

  const QByteArray track = stereoPCM(documentWith({{"snapchat", 1000}}));
  const QByteArray tone = wav("snapchat");
  for (qsizetype frame = 0; frame < track.size() / 4; ++frame) {
    const bool sounds = frame >= 44100 && frame < 44100 + 3528;
    ASSERT_EQ(sampleAt(track, frame * 4), sounds ? wavSample(tone, frame - 44100) : 0) << frame;
    ASSERT_EQ(sampleAt(track, frame * 4), sampleAt(track, frame * 4 + 2)) << frame;
  }
  const QByteArray later = stereoPCM(documentWith({{"snapchat", 1234}}));
  EXPECT_EQ(sampleAt(later, 54418 * 4), 0);
  EXPECT_EQ(sampleAt(later, 54419 * 4), 3);
}

TEST(Soundtrack, overlappingTonesAddAndClipOnlyAtTheEnd) {
  SequenceDocument two = documentWith({{"cashapp", 0}, {"cashapp", 0}});
  two.notifications[1].sound = "bell.wav";
  const QByteArray track = stereoPCM(two);
  const std::vector<float> tone = NotificationSounds::rendered("cashapp");
  for (const qsizetype frame : {0, 529, 4000, 7000})
    EXPECT_EQ(sampleAt(track, frame * 4),
              static_cast<qint16>(2 * tone[static_cast<std::size_t>(frame)] * 32767));

  const QByteArray loud = stereoPCM(documentWith(QList<std::pair<QString, double>>(50, {"snapchat", 0})));
  int least = 0;
  int greatest = 0;
  for (qsizetype offset = 0; offset < loud.size(); offset += 2) {
    least = std::min<int>(least, sampleAt(loud, offset));
    greatest = std::max<int>(greatest, sampleAt(loud, offset));
  }
  EXPECT_EQ(least, -32767);
  EXPECT_EQ(greatest, 32767);
}

TEST(Soundtrack, itsPiecesAreEqualToTheWholeToTheBit) {
  // Tones before the start, across the cuts and on top of each other, which sum up differently in another
  // order.
  QList<std::pair<QString, double>> pings{{"snapchat", -40}, {"cashapp", 3000}, {"youtube", -5000}};
  for (int i = 0; i < 60; ++i) pings.append({i % 2 ? "messages" : "tiktok", 3000 - 47.3 * i});
  const SequenceDocument document = documentWith(pings);
  const QByteArray whole = stereoPCM(document);
  const qint64 frames = NotificationSounds::soundtrackFrames(document);
  ASSERT_EQ(whole.size(), frames * 4);
  for (const qint64 length : {qint64{1000}, qint64{4097}, qint64{70000}, frames}) {
    QByteArray joined;
    for (qint64 first = 0; first < frames; first += length)
      joined += stereoPCM(document, first, std::min(length, frames - first));
    EXPECT_TRUE(joined == whole) << length;
  }
}

TEST(Soundtrack, onlyWholeChunksAreWrapped) {
  const QByteArray pcm(4096 * 4, 1);
  const auto chunk = NotificationSounds::audioSampleBuffer(pcm, 4096, 8192);
  ASSERT_TRUE(chunk);
  EXPECT_EQ(chunk->frames, 4096);
  EXPECT_EQ(chunk->presentationTime, 8192);
  EXPECT_EQ(chunk->pcm, pcm);
  EXPECT_FALSE(NotificationSounds::audioSampleBuffer(pcm, 0, 0));
  EXPECT_FALSE(NotificationSounds::audioSampleBuffer({}, 1, 0));
  EXPECT_FALSE(NotificationSounds::audioSampleBuffer(pcm, 4097, 0));
}

}  // namespace
}  // namespace brisklet
