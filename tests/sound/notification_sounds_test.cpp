#include "sound/notification_sounds.h"

#include "support/documents.h"

#include <gtest/gtest.h>

#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace brisklet {
namespace {

using NotificationSounds::stereoPCM;
using NotificationSounds::wav;

constexpr qsizetype wavHeaderBytes = 44;

std::vector<qint16> samplesOf(const QByteArray& pcm) {
  std::vector<qint16> samples(static_cast<std::size_t>(pcm.size() / 2));
  qFromLittleEndian<qint16>(pcm.constData(), pcm.size() / 2, samples.data());
  return samples;
}

TEST(NotificationSounds, everyToneHasItsLengthItsNotesAndItsLevel) {
  const struct {
    QString appId;
    qsizetype fileBytes;
    int firstSample;
    qsizetype lastNoteEnd;
    float at1000, at2000, at4000;  // in the first note, in two, in all that there are
  } rows[]{
      {"tiktok", 16360, -3, 1543 + 4851, -0.01057f, 0.066494f, 0.005633f},
      {"instagram", 19006, 0, 1543 + 6174, -0.104214f, 0.160922f, -0.013621f},
      {"messages", 20770, 0, 1543 + 7056, 0.085228f, 0.032726f, 0.017026f},
      {"snapchat", 10628, 3, 3528, 0.033807f, -0.003378f, 0},
      {"cashapp", 25622, -3, 3087 + 7938, -0.111842f, 0.066297f, 0.041755f},
      {"youtube", 19888, 0, 1543 + 6615, -0.107352f, 0.070212f, 0.00705f},
      {"TikTok", 17242, -3, 1543 + 5292, -0.077231f, 0.090822f, 0.001102f},
      {"", 17242, -3, 1543 + 5292, -0.077231f, 0.090822f, 0.001102f},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.appId.toStdString());
    ASSERT_EQ(wav(row.appId).size(), row.fileBytes);
    EXPECT_EQ(samplesOf(wav(row.appId).sliced(wavHeaderBytes)).front(), row.firstSample);
    const std::vector<float> tone = NotificationSounds::rendered(row.appId);
    EXPECT_NEAR(tone[1000], row.at1000, 5e-6);
    EXPECT_NEAR(tone[2000], row.at2000, 5e-6);
    EXPECT_NEAR(tone[4000], row.at4000, 5e-6);
    EXPECT_TRUE(std::all_of(tone.begin() + row.lastNoteEnd, tone.end(), [](float s) { return s == 0; }));
  }
}

TEST(NotificationSounds, theWavHeaderDescribesMonoSixteenBitSound) {
  const QByteArray expected = QByteArray::fromHex(
      "52494646 7c290000 57415645 666d7420 10000000 0100 0100 44ac0000 88580100 0200 1000 64617461 58290000");
  EXPECT_EQ(wav("snapchat").first(wavHeaderBytes).toHex(), expected.toHex());
}

TEST(NotificationSounds, whatFallsOutsideTheBufferIsDropped) {
  std::vector<float> buffer(100);
  for (const double atMs : {1000.0, -100000.0, 1e300, -1e300, std::nan(""), HUGE_VAL, 9.3e18})
    NotificationSounds::mix("snapchat", atMs, buffer);
  EXPECT_EQ(buffer, std::vector<float>(100));

  // A note cut at its start keeps its envelope but starts its wave anew.
  NotificationSounds::mix("snapchat", -10, buffer);
  EXPECT_GT(buffer[0], 0.08f);
}

TEST(Soundtrack, placesEachToneAtItsLandingSampleInBothChannels) {
  EXPECT_EQ(stereoPCM(documentOf({})), QByteArray(423360, 0));
  const std::vector<qint16> tone = samplesOf(wav("snapchat").sliced(wavHeaderBytes));
  for (const auto& [atMs, landing, frames] :
       {std::tuple(1000.0, 44100u, 123479u), std::tuple(1235.0, 54463u, 133843u)}) {
    std::vector<qint16> expected(2 * frames);
    for (std::size_t i = 0; i < 2 * tone.size(); ++i) expected[2 * landing + i] = tone[i / 2];
    EXPECT_TRUE(samplesOf(stereoPCM(documentOf({{"snapchat", atMs}}))) == expected) << atMs;
  }
}

TEST(Soundtrack, overlappingTonesAddAndClipOnlyAtTheEnd) {
  SequenceDocument two = documentOf({{"cashapp", 0}, {"cashapp", 0}});
  two.notifications[1].sound = "bell.wav";
  const std::vector<qint16> track = samplesOf(stereoPCM(two));
  const std::vector<float> tone = NotificationSounds::rendered("cashapp");
  for (const std::size_t frame : {0u, 529u, 4000u, 7000u})
    EXPECT_EQ(track[2 * frame], static_cast<qint16>(2 * tone[frame] * 32767));

  const auto loud = samplesOf(stereoPCM(documentOf(QList<TestPing>(50, {"snapchat", 0}))));
  const auto [least, greatest] = std::minmax_element(loud.begin(), loud.end());
  EXPECT_EQ(*least, -32767);
  EXPECT_EQ(*greatest, 32767);
}

TEST(Soundtrack, itsPiecesAreEqualToTheWholeToTheBit) {
  // Tones before the start, across the cuts and on top of each other, which sum up differently in another
  // order.
  QList<TestPing> pings{{"snapchat", -40}, {"cashapp", 3000}, {"youtube", -5000}};
  for (int i = 0; i < 60; ++i) pings.append({i % 2 ? "messages" : "tiktok", 3000 - 47.3 * i});
  const SequenceDocument document = documentOf(pings);
  const QByteArray whole = stereoPCM(document);
  const qint64 frames = NotificationSounds::soundtrackFrames(document);
  ASSERT_EQ(whole.size(), frames * 4);
  for (const qint64 length : {1000, 4097, 70000}) {
    QByteArray joined;
    for (qint64 first = 0; first < frames; first += length)
      joined += stereoPCM(document, first, std::min(length, frames - first));
    EXPECT_TRUE(joined == whole) << length;
  }
}

}  // namespace
}  // namespace brisklet
