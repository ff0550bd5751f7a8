#pragma once

#include <QtGlobal>
#include <span>
#include <vector>

namespace brisklet {

/// Mixes the tones that are sounding. Each starts at the first sample asked for after `start` and goes on to
/// its end, unless as many newer ones start meanwhile as can sound at once.
class ToneMixer {
 public:
  static constexpr std::size_t mostTones = 8;

  /// Mono samples at 44100 Hz, full scale +-1.
  void start(std::vector<float> tone);
  /// The next samples, clipped where the sum is beyond full scale. False when no tone sounds in them.
  bool next(std::span<qint16> samples);
  /// Forgets all tones.
  void clear() { voices_.clear(); }

 private:
  struct Voice {
    std::vector<float> tone;
    std::size_t played = 0;
  };

  std::vector<Voice> voices_;  // oldest first
};

}  // namespace brisklet
