#include "sound/notification_sounds.h"

#include "model/text.h"
#include "sound/wav_file.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet::NotificationSounds {

namespace {

constexpr double staggerSeconds = 0.035;
constexpr double attackSeconds = 0.012;
constexpr double shortestDecaySeconds = 0.001;
constexpr double tailSeconds = 0.04;
/// The level at which the attack starts and the decay ends.
constexpr float envelopeFloor = 0.0001f;
constexpr float integerFullScale = 32767;

/// Times become samples by truncation toward zero.
qint64 samples(double seconds) {
  return static_cast<qint64>(seconds * sampleRate);
}

double oscillator(Wave wave, double phase) {
  if (wave == Wave::sine) return std::sin((phase + phase) * std::numbers::pi);
  const double cycle = phase - std::trunc(phase);
  const bool rises = cycle < 0.5;
  if (wave == Wave::square) return rises ? 1 : -1;
  return rises ? 4 * cycle - 1 : 3 - 4 * cycle;
}

/// A straight rise to `gain`, then an exponential fall that reaches the floor at the end of the note.
float envelope(float gain, double seconds, double decaySeconds) {
  if (seconds < attackSeconds)
    return (gain - envelopeFloor) * static_cast<float>(seconds / attackSeconds) + envelopeFloor;
  return gain * std::pow(envelopeFloor / gain, static_cast<float>((seconds - attackSeconds) / decaySeconds));
}

/// The sample at which a tone starts; nothing for a time that lies outside of what an index can count, and so
/// outside any buffer.
std::optional<qint64> sampleAt(double atMs) {
  const double sample = std::trunc(atMs / 1000 * sampleRate);
  constexpr double farthest = 4611686018427387904.0;  // 2^62
  if (!(std::abs(sample) < farthest)) return {};
  return static_cast<qint64>(sample);
}

void mixAt(const Tone& recipe, qint64 start, std::span<float> buffer) {
  const qint64 length = samples(recipe.duration);
  const auto size = static_cast<qint64>(buffer.size());
  const auto gain = static_cast<float>(recipe.gain);
  const double decaySeconds = std::max(recipe.duration - attackSeconds, shortestDecaySeconds);
  for (std::size_t note = 0; note < recipe.frequencies.size(); ++note) {
    const qint64 noteStart = start + samples(static_cast<double>(note) * staggerSeconds);
    const double step = recipe.frequencies[note] / sampleRate;
    // A note cut at the buffer's start begins there with phase 0, but its envelope has gone on.
    double phase = 0;
    const qint64 end = std::min(length, size - noteStart);
    for (qint64 j = std::max<qint64>(0, -noteStart); j < end; ++j) {
      const float level = envelope(gain, static_cast<double>(j) / sampleRate, decaySeconds);
      buffer[static_cast<std::size_t>(noteStart + j)] +=
          level * static_cast<float>(oscillator(recipe.wave, phase));
      phase += step;
    }
  }
}

/// `mono` as 16-bit little-endian samples, each written for every channel.
QByteArray interleaved(std::span<const float> mono, qsizetype channels) {
  QByteArray pcm(static_cast<qsizetype>(mono.size()) * channels * 2, Qt::Uninitialized);
  char* out = pcm.data();
  for (const float sample : mono) {
    const qint16 value = pcm16(sample);
    for (qsizetype channel = 0; channel < channels; ++channel, out += 2) qToLittleEndian(value, out);
  }
  return pcm;
}

}  // namespace

qint16 pcm16(float sample) {
  const float scaled = sample < 1.0f ? std::max(sample, -1.0f) * integerFullScale : integerFullScale;
  return static_cast<qint16>(scaled);
}

const Tone& tone(const QString& appId) {
  static const std::vector<std::pair<QString, Tone>> table{
      {u"tiktok"_s, {{980, 1320}, Wave::triangle, 0.11, 0.22}},
      {u"instagram"_s, {{740, 1180}, Wave::sine, 0.14, 0.2}},
      {u"messages"_s, {{1240, 1640}, Wave::sine, 0.16, 0.22}},
      {u"snapchat"_s, {{1560}, Wave::square, 0.08, 0.1}},
      {u"cashapp"_s, {{620, 930, 1240}, Wave::triangle, 0.18, 0.24}},
      {u"youtube"_s, {{520, 780}, Wave::sine, 0.15, 0.2}},
  };
  static const Tone any{{880, 1100}, Wave::triangle, 0.12, 0.2};
  for (const auto& [id, recipe] : table) {
    if (sameText(id, appId)) return recipe;
  }
  return any;
}

void mix(const QString& appId, double atMs, std::span<float> buffer) {
  if (const std::optional<qint64> start = sampleAt(atMs)) mixAt(tone(appId), *start, buffer);
}

qint64 soundtrackFrames(const SequenceDocument& document) {
  const double frames = document.durationMs() / 1000 * sampleRate;
  return frames < 1 ? 1 : static_cast<qint64>(frames);
}

std::vector<float> rendered(const QString& appId) {
  const Tone& recipe = tone(appId);
  const double staggers = static_cast<double>(recipe.frequencies.size()) - 1;
  const qint64 count = std::max<qint64>(
      1, static_cast<qint64>((staggers * staggerSeconds + recipe.duration + tailSeconds) * sampleRate));
  std::vector<float> buffer(static_cast<std::size_t>(count));
  mix(appId, 0, buffer);
  return buffer;
}

QByteArray wav(const QString& appId) {
  return wavFile(interleaved(rendered(appId), 1), 1);
}

QByteArray stereoPCM(const SequenceDocument& document) {
  return stereoPCM(document, 0, soundtrackFrames(document));
}

QByteArray stereoPCM(const SequenceDocument& document, qint64 first, qint64 frames) {
  // Mixing begins early enough for every tone that is heard in the piece to be mixed from its own start: a
  // tone that is cut has another phase.
  constexpr qint64 longerThanAnyTone = sampleRate;
  const qint64 begin = std::max<qint64>(0, first - longerThanAnyTone);
  const qint64 end = first + frames;
  std::vector<float> mono(static_cast<std::size_t>(end - begin));
  for (const Ping& ping : document.notifications) {
    const qint64 start = sampleAt(ping.delayMs).value_or(end);
    if (begin - longerThanAnyTone < start && start < end) mixAt(tone(ping.appId), start - begin, mono);
  }
  return interleaved(std::span(mono).subspan(static_cast<std::size_t>(first - begin)), 2);
}

std::optional<AudioChunk> audioSampleBuffer(const QByteArray& pcm, qint64 frames, qint64 presentationTime) {
  constexpr qint64 bytesPerFrame = 4;
  if (frames < 1 || pcm.size() != frames * bytesPerFrame) return {};
  return AudioChunk{pcm, frames, presentationTime};
}

}  // namespace brisklet::NotificationSounds
