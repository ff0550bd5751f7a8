#pragma once

#include "desktop/audio_output.h"
#include "sound/tone_mixer.h"
#include "sound/tone_player.h"

#include <memory>
#include <mutex>

namespace brisklet {

/// Plays the notification tones over an audio output. The 8 most recent tones sound; what the output does
/// never holds up the caller.
class NotificationSoundPlayer final : public TonePlayer, private AudioSource {
 public:
  explicit NotificationSoundPlayer(const MakeAudioOutput& makeOutput);

  void prepare() override;
  void play(const QString& appId) override;

 private:
  bool next(std::span<qint16> samples) override;
  void skipWaiting() override;

  std::mutex mutex_;
  ToneMixer mixer_;
  /// Last, so that nothing asks for sound any more when the rest goes.
  std::unique_ptr<AudioOutput> output_;
};

}  // namespace brisklet
