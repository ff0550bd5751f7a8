#include "sound/tone_mixer.h"

#include "sound/notification_sounds.h"

#include <algorithm>
#include <utility>

namespace brisklet {

void ToneMixer::start(std::vector<float> tone) {
  if (voices_.size() == mostTones) voices_.erase(voices_.begin());
  voices_.push_back({std::move(tone)});
}

bool ToneMixer::next(std::span<qint16> samples) {
  if (voices_.empty()) {
    std::fill(samples.begin(), samples.end(), qint16{0});
    return false;
  }
  for (std::size_t i = 0; i < samples.size(); ++i) {
    float sum = 0;
    for (const Voice& voice : voices_) {
      if (voice.played + i < voice.tone.size()) sum += voice.tone[voice.played + i];
    }
    samples[i] = NotificationSounds::pcm16(sum);
  }
  for (Voice& voice : voices_) voice.played += samples.size();
  std::erase_if(voices_, [](const Voice& voice) { return voice.played >= voice.tone.size(); });
  return true;
}

}  // namespace brisklet
