#include "sound/tone_mixer.h"

#include "sound/notification_sound_player.h"
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

TEST(NotificationSoundPlayer, wakesTheOutputAndFeedsItWhatItAsksFor) {
  struct Output : AudioOutput {
    explicit Output(int& wakings) : count(wakings) {}
    void wake() override { ++count; }
    int& count;
  };
  int wakings = 0;
  AudioSource* source = nullptr;
  NotificationSoundPlayer player([&](AudioSource& asked) {
    source = &asked;
    return std::make_unique<Output>(wakings);
  });
  const std::vector<float> tone = NotificationSounds::rendered("messages");
  std::vector<qint16> samples(tone.size());
  player.prepare();
  EXPECT_EQ(wakings, 1);
  EXPECT_FALSE(source->next(samples));
  player.play("messages");
  EXPECT_EQ(wakings, 2);
  EXPECT_TRUE(source->next(samples));
  EXPECT_EQ(samples, pcmOf(tone));

  // A device that was away must not play late what it missed.
  player.play("messages");
  source->skipWaiting();
  EXPECT_FALSE(source->next(samples));
}

}  // namespace
}  // namespace brisklet
