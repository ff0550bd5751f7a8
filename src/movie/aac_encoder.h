#pragma once

#include "movie/codec_handles.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace brisklet {

struct AacSettings {
  int sampleRate = 0;
  int channels = 0;
  int bitRate = 0;  // bits per second
};

/// Encodes a track of 16-bit sound as AAC-LC. Silence costs next to nothing: once it has lasted a while its
/// packets are all equal, and the last one is handed out again instead of encoding more.
class AacEncoder {
 public:
  /// Receives the packets in order; times in samples. The first lies before zero: it holds what the decoder
  /// needs before the first sample (the priming).
  using Sink = std::function<void(std::span<const uint8_t> packet, int64_t time, int64_t duration)>;

  [[nodiscard]] static bool supports(const AacSettings& settings);

  AacEncoder(const AacSettings& settings, Sink sink);

  /// The AudioSpecificConfig (ISO/IEC 14496-3) that the sample description carries.
  [[nodiscard]] std::span<const uint8_t> decoderConfiguration() const;
  /// Samples of one packet.
  [[nodiscard]] int packetSamples() const { return context_->frame_size; }
  /// Samples that a decoder hands out before the first one of the track.
  [[nodiscard]] int priming() const { return context_->initial_padding; }

  /// Interleaved samples.
  void append(std::span<const int16_t> samples);
  void appendSilence(int64_t samplesPerChannel);
  void finish();

 private:
  void encodePending();
  void encode(const AVFrame* frame);
  /// Hands on a packet that holds the next `packetSamples()` samples.
  void handOn(std::span<const uint8_t> packet);

  CodecContextPtr context_;
  FramePtr frame_;
  PacketPtr packet_;
  Sink sink_;
  std::vector<int16_t> pending_;  // interleaved, less than a frame between calls
  // Per channel.
  int64_t samplesIn_ = 0;     // taken in, whether the codec was asked or not
  int64_t samplesOut_ = 0;    // of all packets, with the priming
  int64_t silentFrames_ = 0;  // whole ones that went to the codec since the last sound
  std::vector<uint8_t> lastPacket_;
  bool lastTwoAreEqual_ = false;
};

}  // namespace brisklet
