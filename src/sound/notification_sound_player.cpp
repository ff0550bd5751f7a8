#include "sound/notification_sound_player.h"

#include "sound/notification_sounds.h"

#include <utility>

namespace brisklet {

static_assert(AudioSource::sampleRate == NotificationSounds::sampleRate);

NotificationSoundPlayer::NotificationSoundPlayer(const MakeAudioOutput& makeOutput)
    : output_(makeOutput(*this)) {}

void NotificationSoundPlayer::play(const QString& appId) {
  std::vector<float> tone = NotificationSounds::rendered(appId);
  {
    const std::scoped_lock lock(mutex_);
    mixer_.start(std::move(tone));
  }
  output_->wake();
}

void NotificationSoundPlayer::prepare() {
  output_->wake();
}

bool NotificationSoundPlayer::next(std::span<qint16> samples) {
  const std::scoped_lock lock(mutex_);
  return mixer_.next(samples);
}

void NotificationSoundPlayer::skipWaiting() {
  const std::scoped_lock lock(mutex_);
  mixer_.clear();
}

}  // namespace brisklet
