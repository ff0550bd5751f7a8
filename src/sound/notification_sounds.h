#pragma once

#include "base/audio_chunk.h"
#include "model/sequence_document.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brisklet {

/// The notification tones: synthesised from a few numbers each, for the live preview and for the movie alike.
namespace NotificationSounds {

inline constexpr int sampleRate = 44100;

enum class Wave : std::uint8_t { sine, triangle, square };

/// The recipe of an app's tone.
struct Tone {
  /// The notes in Hz, in the order in which they start.
  std::vector<double> frequencies;
  Wave wave = Wave::sine;
  /// The length of every note in seconds.
  double duration = 0;
  /// The peak of every note; 1 is full scale.
  double gain = 0;
};

/// The tone of an app id; ids without one of their own share one.
[[nodiscard]] const Tone& tone(const QString& appId);

/// A sample (full scale +-1) as a 16-bit one, clipped: the only clipping there is.
[[nodiscard]] qint16 pcm16(float sample);

/// Adds the app's tone to mono samples at 44100 Hz (full scale +-1, not clipped), starting `atMs`
/// milliseconds after the first sample. Samples that fall outside `buffer` are dropped. `atMs` must be
/// finite.
void mix(const QString& appId, double atMs, std::span<float> buffer);

/// The app's tone alone as mono samples, from its first note to a short silence after the last.
[[nodiscard]] std::vector<float> rendered(const QString& appId);

/// `rendered` as a 16-bit mono WAV file.
[[nodiscard]] QByteArray wav(const QString& appId);

/// The length of a document's soundtrack in frames of 1 / 44100 s, at least one. The document's length must
/// be finite.
[[nodiscard]] qint64 soundtrackFrames(const SequenceDocument& document);

/// The whole soundtrack of a document: interleaved stereo, 16-bit little-endian, 44100 Hz, left and right
/// equal.
[[nodiscard]] QByteArray stereoPCM(const SequenceDocument& document);

/// The part of the soundtrack from frame `first` on, equal to the bit, for the memory of that part alone.
[[nodiscard]] QByteArray stereoPCM(const SequenceDocument& document, qint64 first, qint64 frames);

/// A piece of the soundtrack for the movie: exactly `frames` frames, the first presented at
/// `presentationTime` in units of 1 / 44100 s. Nothing for an empty piece, or one that is not `frames` frames
/// long.
[[nodiscard]] std::optional<AudioChunk> audioSampleBuffer(const QByteArray& pcm, qint64 frames,
                                                          qint64 presentationTime);

}  // namespace NotificationSounds

}  // namespace brisklet
