#include "sound/tone_mixer.h"

#include "sound/notification_sounds.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

std::vector<qint16> pcmOf(const std::vector<float>& tone) {
  std::vector<qint16> samples;
  for (const float sample : tone) samples.push_back(NotificationSounds::pcm16(sample));
  return samples;
}

/// What the mixer gives in pieces of `size` samples until it is silent.
std::vector<qint16> drained(ToneMixer& mixer, std::size_t size) {
  std::vector<qint16> samples;
  std::vector<qint16> piece(size);
  while (mixer.next(piece)) samples.insert(samples.end(), piece.begin(), piece.end());
  EXPECT_EQ(piece, std::vector<qint16>(size)) << "Silence is written over what the buffer held.";
  return samples;
}

TEST(ToneMixer, tonesAddFromWhereEachStartsWhateverTheSizeOfThePieces) {
  const std::vector<float> second = NotificationSounds::rendered("snapchat");
  for (const std::size_t size : {1u, 441u, 1000u, 50000u}) {
    std::vector<float> sum = NotificationSounds::rendered("cashapp");
    ToneMixer mixer;
    mixer.start(sum);
    std::vector<qint16> head(1234);
    EXPECT_TRUE(mixer.next(head));
    mixer.start(second);
    for (std::size_t i = 0; i < second.size(); ++i) sum[1234 + i] += second[i];
    sum.resize(1234 + (sum.size() - 1234 + size - 1) / size * size);
    std::vector<qint16> samples = drained(mixer, size);
    samples.insert(samples.begin(), head.begin(), head.end());
    EXPECT_TRUE(samples == pcmOf(sum)) << size;
  }
}

TEST(ToneMixer, theEightMostRecentTonesSoundAndTheirSumIsClipped) {
  ToneMixer mixer;
  for (int i = 1; i <= 10; ++i) mixer.start({static_cast<float>(i) / 1000, 0.5f, -0.5f});
  EXPECT_EQ(drained(mixer, 3), pcmOf({0.052f, 1, -1}));  // 3 + ... + 10 thousandths
}

}  // namespace
}  // namespace brisklet
