#pragma once

#include <QString>

namespace brisklet {

/// Plays notification tones to the person at the machine. Tones overlap freely. Failures are silent.
class TonePlayer {
 public:
  virtual ~TonePlayer() = default;

  /// Tones will be wanted soon: a loudspeaker that rests takes a moment to wake.
  virtual void prepare() = 0;
  /// Starts the app's tone and returns at once.
  virtual void play(const QString& appId) = 0;
};

}  // namespace brisklet
