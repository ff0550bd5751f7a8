#pragma once

#include <QtGlobal>
#include <functional>
#include <memory>
#include <span>

namespace brisklet {

/// Live sound as the output asks for it: mono, signed 16 bits, 44100 samples a second. Its members are called
/// on the output's thread.
class AudioSource {
 public:
  static constexpr int sampleRate = 44100;

  virtual ~AudioSource() = default;

  /// Fills `samples` with what sounds next. False when that is silence.
  virtual bool next(std::span<qint16> samples) = 0;
  /// The output stood still so long that what is waiting would sound at a wrong moment: forget it.
  virtual void skipWaiting() = 0;
};

/// The loudspeaker. It asks its source for sound while there is some and a little longer, then rests.
class AudioOutput {
 public:
  virtual ~AudioOutput() = default;

  /// The source has sound, or soon will. Returns at once, whatever the device does.
  virtual void wake() = 0;
};

using MakeAudioOutput = std::function<std::unique_ptr<AudioOutput>(AudioSource& source)>;

/// The desktop's sound server; `source` outlives the output. What sounds next is heard well within 50 ms
/// after the source gave it. Without a server it is silent; a server that comes back is found at the next
/// `wake`.
[[nodiscard]] std::unique_ptr<AudioOutput> makeAudioOutput(AudioSource& source);

}  // namespace brisklet
