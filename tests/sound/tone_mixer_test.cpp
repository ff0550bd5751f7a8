#include "sound/tone_mixer.h"

#include <gtest/gtest.h>

#include "sound/notification_sound_player.h"
#include "sound/notification_sounds.h"

namespace brisklet {
namespace {

/// What the mixer gives in pieces of `size` samples until it is silent.
std::vector<qint16> drained(ToneMixer& mixer, std::size_t size) {
  std::vector<qint16> samples;
  std::vector<qint16> piece(size);
  while (mixer.next(piece)) samples.insert(samples.end(), piece.begin(), piece.end());
  return samples;
}

TEST(ToneMixer, aToneSoundsWholeWhateverTheSizeOfThePieces) {
  const std::vector<float> tone = NotificationSounds::rendered("cashapp");
  for (const std::size_t size : {1u, 441u, 1000u, 50000u}) {
    ToneMixer mixer;
    mixer.start(tone);
    const std::vector<qint16> samples = drained(mixer, size);
    ASSERT_GE(samples.size(), tone.size());
    ASSERT_LT(samples.size(), tone.size() + size);
    for (std::size_t i = 0; i < samples.size(); ++i)
      ASSERT_EQ(samples[i], i < tone.size() ? NotificationSounds::pcm16(tone[i]) : 0) << size << ' ' << i;
  }
}

TEST(ToneMixer, overlappingTonesAddFromTheSampleAtWhichEachStarts) {
  const std::vector<float> first = NotificationSounds::rendered("tiktok");
  const std::vector<float> second = NotificationSounds::rendered("snapchat");
  ToneMixer mixer;
  mixer.start(first);
  std::vector<qint16> head(1234);
  EXPECT_TRUE(mixer.next(head));
  mixer.start(second);
  const std::vector<qint16> rest = drained(mixer, 100);
  for (std::size_t i = 0; i < second.size(); ++i)
    ASSERT_EQ(rest[i], NotificationSounds::pcm16(first[1234 + i] + second[i])) << i;
}

TEST(ToneMixer, sumsBeyondFullScaleAreClippedAndDoNotWrap) {
  ToneMixer mixer;
  for (int i = 0; i < 3; ++i) mixer.start({0.5f, -0.5f});
  std::vector<qint16> samples(2);
  mixer.next(samples);
  EXPECT_EQ(samples, (std::vector<qint16>{32767, -32767}));
}

TEST(ToneMixer, theEightMostRecentTonesSound) {
  ToneMixer mixer;
  for (int i = 1; i <= 10; ++i) mixer.start(std::vector<float>(10, static_cast<float>(i) / 1000));
  EXPECT_EQ(mixer.soundingTones(), 8u);
  std::vector<qint16> samples(1);
  mixer.next(samples);
  EXPECT_EQ(samples.front(), NotificationSounds::pcm16(0.052f));  // 3 + ... + 10 thousandths
}

TEST(ToneMixer, silenceIsWrittenOverWhatTheBufferHeld) {
  ToneMixer mixer;
  std::vector<qint16> samples(100, 7);
  EXPECT_FALSE(mixer.next(samples));
  EXPECT_EQ(samples, std::vector<qint16>(100));
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
  std::vector<qint16> samples(20000);

  player.prepare();
  EXPECT_EQ(wakings, 1);
  EXPECT_FALSE(source->next(samples));

  player.play("messages");
  EXPECT_EQ(wakings, 2);
  EXPECT_TRUE(source->next(samples));
  const std::vector<float> tone = NotificationSounds::rendered("messages");
  for (std::size_t i = 0; i < tone.size(); ++i) ASSERT_EQ(samples[i], NotificationSounds::pcm16(tone[i]));
  EXPECT_FALSE(source->next(samples));

  // A device that was away must not play late what it missed.
  player.play("messages");
  source->skipWaiting();
  EXPECT_FALSE(source->next(samples));
}

}  // namespace
}  // namespace brisklet
